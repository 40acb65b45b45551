#include "platform/media/clip_room.h"

#include "platform/media/part_file.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace media {

namespace {

// Room that is less than this part of the rest is not worth a copy of the file.
constexpr uint64_t smallPart = 16;
constexpr uint64_t largestIndex = 64 * 1024 * 1024;
constexpr size_t pieceBytes = 256 * 1024;
constexpr size_t shortHead = 8;
constexpr size_t longHead = 16;
constexpr size_t tableHead = 8; ///< of a chunk table: version, flags, number of entries

using Bytes = std::span<unsigned char>;

uint64_t readNumber(std::span<const unsigned char> bytes)
{
    uint64_t number = 0;
    for (const unsigned char byte : bytes)
        number = number << 8 | byte;
    return number;
}

void writeNumber(Bytes bytes, uint64_t number)
{
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, number >>= 8)
        *byte = static_cast<unsigned char>(number);
}

/// One box of the file (ISO/IEC 14496-12 4.2).
struct Box
{
    std::string kind;
    uint64_t start = 0;
    uint64_t size = 0; ///< with its head
    size_t head = shortHead;
};

/// The box whose header is at `bytes`; nullopt if there is no box here or it extends past `end`.
std::optional<Box> readBox(std::span<const unsigned char> bytes, uint64_t start, uint64_t end)
{
    if (bytes.size() < shortHead)
        return std::nullopt;
    Box box{{bytes.begin() + 4, bytes.begin() + 8}, start, readNumber(bytes.first(4)), shortHead};
    if (box.size == 0) { // up to the end of the file
        box.size = end - start;
    } else if (box.size == 1) {
        if (bytes.size() < longHead)
            return std::nullopt;
        box.size = readNumber(bytes.subspan(8, 8));
        box.head = longHead;
    }
    if (box.size < box.head || box.size > end - start)
        return std::nullopt;
    return box;
}

/// Reads bytes of the file; fewer at its end.
std::vector<unsigned char> readAt(std::ifstream &file, uint64_t start, uint64_t size)
{
    std::vector<unsigned char> bytes(size);
    file.clear();
    file.seekg(static_cast<std::streamoff>(start));
    file.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return bytes;
}

/// Where things are in a finished clip: type, index, room, pictures, in this order.
struct Layout
{
    Box type;
    Box index;
    Box pictures;
    uint64_t room = 0; ///< all of it before the pictures
};

std::optional<Layout> readLayout(std::ifstream &file)
{
    file.seekg(0, std::ios::end);
    const auto end = static_cast<uint64_t>(std::max<std::streamoff>(file.tellg(), 0));
    Layout layout;
    for (uint64_t at = 0; at < end;) {
        const auto box = readBox(readAt(file, at, longHead), at, end);
        if (!box || !layout.pictures.kind.empty())
            return std::nullopt;
        if (box->kind == "ftyp" && at == 0)
            layout.type = *box;
        else if (box->kind == "moov" && layout.index.kind.empty() && box->size <= largestIndex)
            layout.index = *box;
        else if (box->kind == "mdat" && !layout.index.kind.empty())
            layout.pictures = *box;
        else if (box->kind == "free")
            layout.room += box->size;
        else
            return std::nullopt;
        at += box->size;
    }
    if (layout.type.kind.empty() || layout.pictures.kind.empty())
        return std::nullopt;
    return layout;
}

/// Moves all entries of a chunk table (ISO/IEC 14496-12 8.7.5) towards the head of the file.
bool moveTable(Bytes table, size_t entryBytes, const Layout &layout)
{
    if (table.size() < tableHead)
        return false;
    const uint64_t count = readNumber(table.subspan(4, 4));
    if (count > (table.size() - tableHead) / entryBytes)
        return false;
    for (uint64_t i = 0; i < count; ++i) {
        const Bytes entry = table.subspan(tableHead + i * entryBytes, entryBytes);
        const uint64_t place = readNumber(entry);
        if (place < layout.pictures.start)
            return false;
        writeNumber(entry, place - layout.room);
    }
    return true;
}

/// The same for all chunk tables within the boxes of the index.
bool moveChunks(Bytes boxes, const Layout &layout)
{
    for (size_t at = 0; at < boxes.size();) {
        const auto box = readBox(boxes.subspan(at), at, boxes.size());
        if (!box)
            return false;
        const Bytes content = boxes.subspan(at + box->head, box->size - box->head);
        const std::string_view kind = box->kind;
        bool good = true;
        if (kind == "trak" || kind == "mdia" || kind == "minf" || kind == "stbl")
            good = moveChunks(content, layout);
        else if (kind == "stco")
            good = moveTable(content, 4, layout);
        else if (kind == "co64")
            good = moveTable(content, 8, layout);
        if (!good)
            return false;
        at += box->size;
    }
    return true;
}

bool copy(std::ifstream &from, const Box &box, PartFile &to)
{
    for (uint64_t done = 0; done < box.size;) {
        const auto piece =
            readAt(from, box.start + done, std::min<uint64_t>(box.size - done, pieceBytes));
        if (piece.empty())
            return false;
        to.write(piece.data(), piece.size());
        done += piece.size();
    }
    return true;
}

} // namespace

void giveBackIndexRoom(const std::string &path)
{
    const auto clip = FileIdentity::of(path);
    std::ifstream file(path, std::ios::binary);
    const auto layout = readLayout(file);
    if (!clip || !layout || layout->room < (layout->index.size + layout->pictures.size) / smallPart)
        return;
    auto index = readAt(file, layout->index.start, layout->index.size);
    if (index.size() != layout->index.size ||
        !moveChunks(Bytes(index).subspan(layout->index.head), *layout))
        return;
    PartFile smaller(path);
    if (!copy(file, layout->type, smaller))
        return;
    smaller.write(index.data(), index.size());
    if (!copy(file, layout->pictures, smaller))
        return;
    smaller.flush();
    // A clip that the user deleted meanwhile must not come back.
    smaller.putInPlaceOf(*clip);
}

} // namespace media
