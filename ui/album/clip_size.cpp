#include "ui/album/clip_size.h"

#include <QFile>
#include <QtEndian>

#include <optional>

namespace zelvaro {

namespace {

// A file of ours has a handful of boxes on each level.
constexpr int mostBoxes = 1000;

// Fields of a sample entry, from the start of its box.
constexpr qint64 firstEntry = 16; // in the box of descriptions
constexpr qint64 entryWidth = 32;
constexpr qint64 entryHeight = 34;

struct Box
{
    QByteArray type;
    qint64 start;   ///< of the box
    qint64 content; ///< behind its header
    qint64 end;
};

std::optional<quint64> number(QFile &file, qint64 position, int bytes)
{
    if (!file.seek(position))
        return {};
    const QByteArray raw = file.read(bytes);
    if (raw.size() != bytes)
        return {};
    quint64 value = 0;
    for (const char byte : raw)
        value = value << 8 | static_cast<uchar>(byte);
    return value;
}

std::optional<Box> boxAt(QFile &file, qint64 start, qint64 end)
{
    auto size = number(file, start, 4);
    const QByteArray type = size ? file.read(4) : QByteArray();
    if (type.size() != 4)
        return {};
    qint64 content = start + 8;
    if (*size == 1) {
        size = number(file, content, 8);
        content += 8;
    }
    if (!size)
        return {};
    const auto left = static_cast<quint64>(end - start);
    const quint64 length = *size == 0 ? left : *size;
    if (length > left || static_cast<qint64>(length) < content - start)
        return {};
    return Box{type, start, content, start + static_cast<qint64>(length)};
}

/// The first box of that type, from a position on.
std::optional<Box> findBox(QFile &file, const char *type, qint64 from, qint64 end)
{
    for (int i = 0; i < mostBoxes && from < end; ++i) {
        const auto box = boxAt(file, from, end);
        if (!box || box->type == type)
            return box;
        from = box->end;
    }
    return {};
}

QSize trackSize(QFile &file, const Box &track)
{
    std::optional<Box> box = track;
    for (const char *type : {"mdia", "minf", "stbl", "stsd"}) {
        // The media information of a sound track has no header of video.
        if (qstrcmp(type, "stbl") == 0 && !findBox(file, "vmhd", box->content, box->end))
            return {};
        box = findBox(file, type, box->content, box->end);
        if (!box)
            return {};
    }
    const qint64 entry = box->start + firstEntry;
    const auto width = number(file, entry + entryWidth, 2);
    const auto height = number(file, entry + entryHeight, 2);
    if (!width || !height || entry + entryHeight + 2 > box->end)
        return {};
    return {static_cast<int>(*width), static_cast<int>(*height)};
}

} // namespace

QSize clipSize(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const auto movie = findBox(file, "moov", 0, file.size());
    if (!movie)
        return {};
    qint64 from = movie->content;
    for (int i = 0; i < mostBoxes; ++i) {
        const auto track = findBox(file, "trak", from, movie->end);
        if (!track)
            break;
        const QSize size = trackSize(file, *track);
        if (!size.isEmpty())
            return size;
        from = track->end;
    }
    return {};
}

} // namespace zelvaro
