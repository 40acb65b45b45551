#include "tests/platform/rtsp/case_media.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/h264_bitstream.h"
#include "platform/rtsp/nal_units.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>

namespace {

using base::Bytes;

constexpr size_t maxPayload = 500; // so that key frames are cut
constexpr uint32_t pictureTicks = 1800;
constexpr uint8_t pictureType = 96;
constexpr uint8_t jpegType = 26;
constexpr size_t rtpHead = 12;
constexpr uint32_t source = 0x1234;

Bytes readAll(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("no file " + path);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// RTP packets, each behind its length of 2 bytes (RFC 4571).
std::vector<Bytes> packetsIn(const std::string &path)
{
    const Bytes all = readAll(path);
    std::vector<Bytes> packets;
    for (size_t at = 0; at + 2 <= all.size();) {
        const size_t size = static_cast<size_t>(all[at] << 8 | all[at + 1]);
        const auto begin = all.begin() + static_cast<ptrdiff_t>(at + 2);
        packets.emplace_back(begin, begin + static_cast<ptrdiff_t>(size));
        at += 2 + size;
    }
    return packets;
}

/// The bytes of the slices of a frame, for comparison.
Bytes joined(const std::vector<Bytes> &parts)
{
    Bytes all;
    for (const Bytes &part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

bool isSlice(CaseClip::Kind kind, std::span<const uint8_t> nal)
{
    if (kind == CaseClip::Kind::H265)
        return (nal[0] >> 1 & 0x3f) < 32;
    const int type = nal[0] & 0x1f;
    return type == 1 || type == 5;
}

bool isSet(CaseClip::Kind kind, std::span<const uint8_t> nal)
{
    const int type = kind == CaseClip::Kind::H265 ? nal[0] >> 1 & 0x3f : nal[0] & 0x1f;
    return kind == CaseClip::Kind::H265 ? type >= 32 && type <= 34 : type == 7 || type == 8;
}

bool beginsPicture(CaseClip::Kind kind, std::span<const uint8_t> nal)
{
    return (nal[kind == CaseClip::Kind::H265 ? 2 : 1] & 0x80) != 0; // first_mb_in_slice is 0
}

bool isKey(CaseClip::Kind kind, std::span<const uint8_t> nal)
{
    const int type = kind == CaseClip::Kind::H265 ? nal[0] >> 1 & 0x3f : nal[0] & 0x1f;
    return kind == CaseClip::Kind::H265 ? type >= 16 && type <= 21 : type == 5;
}

bool isBipredictive(const Bytes &slice)
{
    Bytes unit;
    rtsp::append(unit, slice.size(), 4);
    rtsp::append(unit, slice);
    return rtsp::readSliceFacts(unit).bipredictive;
}

} // namespace

CaseClip::CaseClip(const std::string &path)
{
    if (path.ends_with(".rtp")) {
        kind = Kind::Jpeg;
        pictures.emplace_back();
        for (const Bytes &packet : packetsIn(path)) {
            pictures.back().parts.emplace_back(packet.begin() + rtpHead, packet.end());
            pictures.back().key = true;
            pictures.back().shown = static_cast<unsigned>(pictures.size() - 1);
            if (packet[1] & 0x80)
                pictures.emplace_back();
        }
        pictures.pop_back();
        return;
    }
    kind = path.ends_with(".h265") ? Kind::H265 : Kind::H264;
    const Bytes all = readAll(path);
    rtsp::forEachNal(all, [this](std::span<const uint8_t> nal) {
        const Bytes bytes(nal.begin(), nal.end());
        if (isSet(kind, nal) && std::find(sets.begin(), sets.end(), bytes) == sets.end())
            sets.push_back(bytes);
        if (!isSlice(kind, nal))
            return;
        if (beginsPicture(kind, nal))
            pictures.push_back({{}, isKey(kind, nal), 0});
        pictures.back().parts.push_back(bytes);
    });
    // B frames are shown before the frame that precedes them here.
    for (size_t i = 0; i < pictures.size(); ++i) {
        const auto isB = [this](size_t at) {
            return kind == Kind::H264 && at < pictures.size() &&
                   isBipredictive(pictures[at].parts.front());
        };
        size_t after = 0;
        while (isB(i + 1 + after))
            ++after;
        pictures[i].shown = static_cast<unsigned>(isB(i) ? i - 1 : i + after);
    }
}

int CaseClip::find(const Bytes &payload) const
{
    Bytes slices;
    for (size_t at = 0; at + 4 < payload.size();) {
        const size_t size = rtsp::read32(payload, at);
        const std::span<const uint8_t> nal = std::span(payload).subspan(at + 4, size);
        if (isSlice(kind, nal))
            slices.insert(slices.end(), nal.begin(), nal.end());
        at += 4 + size;
    }
    for (size_t i = 0; i < pictures.size(); ++i)
        if (joined(pictures[i].parts) == slices)
            return static_cast<int>(i);
    return -1;
}

CaseMedia::CaseMedia(const CaseClip &clip, CasePacking packing, const std::string &folder)
    : m_clip(clip)
    , m_packing(std::move(packing))
    , m_next(m_packing.firstPicture)
    , m_number(m_packing.number)
{
    if (m_packing.sound.empty() || m_packing.sound == "mulaw")
        return;
    for (const Bytes &packet : packetsIn(folder + '/' + m_packing.sound))
        m_sound.emplace_back(packet.begin(), packet.end());
}

bool CaseMedia::adds(const char *word) const
{
    return (' ' + m_packing.additions + ' ').find(std::string(" ") + word + ' ') !=
           std::string::npos;
}

/// RFC 6184 5.6 to 5.8, RFC 7798 4.4.
void CaseMedia::pack(const Bytes &nal, bool isSet, std::vector<Packet> &packets) const
{
    if (nal.size() <= maxPayload || m_packing.packets == "single") {
        Bytes payload;
        if (adds("start-code"))
            payload = {0, 0, 0, 1};
        rtsp::append(payload, nal);
        if (adds("zeros"))
            payload.insert(payload.end(), 3, 0);
        packets.push_back({payload, true, isSet});
        return;
    }
    const bool isH265 = m_clip.kind == CaseClip::Kind::H265;
    const size_t head = isH265 ? 2 : 1;
    for (size_t from = head; from < nal.size(); from += maxPayload) {
        const size_t to = std::min(nal.size(), from + maxPayload);
        const auto ends =
            static_cast<uint8_t>((from == head ? 0x80 : 0) | (to == nal.size() ? 0x40 : 0));
        Bytes payload;
        if (isH265)
            payload = {static_cast<uint8_t>((nal[0] & 0x81) | 49 << 1), nal[1],
                       static_cast<uint8_t>(ends | (nal[0] >> 1 & 0x3f))};
        else
            payload = {static_cast<uint8_t>((nal[0] & 0xe0) | 28),
                       static_cast<uint8_t>(ends | (nal[0] & 0x1f))};
        payload.insert(payload.end(), nal.begin() + static_cast<ptrdiff_t>(from),
                       nal.begin() + static_cast<ptrdiff_t>(to));
        packets.push_back({payload, to == nal.size(), false});
    }
}

std::vector<CaseMedia::Packet> CaseMedia::packetsOf(const CaseClip::Picture &picture)
{
    std::vector<Packet> packets;
    if (m_clip.kind == CaseClip::Kind::Jpeg) {
        for (const Bytes &part : picture.parts)
            packets.push_back({part, false, false});
        return packets;
    }
    const bool isH265 = m_clip.kind == CaseClip::Kind::H265;
    const bool hasSets =
        picture.key && (m_packing.sets == "each" || (m_packing.sets == "first" && m_sent == 0));
    if (adds("delimiter"))
        pack(isH265 ? Bytes{0x46, 0x01, 0x50} : Bytes{0x09, 0xf0}, false, packets);
    if (hasSets && m_packing.packets == "aggregates") {
        Bytes all = isH265 ? Bytes{48 << 1, 1} : Bytes{0x78};
        for (const Bytes &set : m_clip.sets) {
            rtsp::append(all, set.size(), 2);
            rtsp::append(all, set);
        }
        packets.push_back({all, true, true});
    } else if (hasSets) {
        for (const Bytes &set : m_clip.sets)
            pack(set, true, packets);
    }
    if (adds("sei") && picture.key && !isH265) // recovery point: 0 frames
        pack({0x06, 0x06, 0x01, 0x84, 0x80}, false, packets);
    for (const Bytes &part : picture.parts)
        pack(part, false, packets);
    return packets;
}

std::string CaseMedia::packet(uint8_t type, const Bytes &payload, bool marker)
{
    const bool extends = adds("extension");
    const bool pads = adds("padding");
    Bytes bytes = {static_cast<uint8_t>(0x80 | (extends ? 0x10 : 0) | (pads ? 0x20 : 0)),
                   static_cast<uint8_t>((marker ? 0x80 : 0) | type)};
    rtsp::append(bytes, m_number++, 2);
    const auto &picture = m_clip.pictures[m_next];
    const auto count = static_cast<uint32_t>(m_clip.pictures.size());
    const uint32_t round = (static_cast<uint32_t>(m_packing.firstPicture) + m_sent) / count;
    uint32_t time = (round * count + picture.shown) * pictureTicks;
    if (m_packing.times == "equal")
        time = 7;
    else if (m_packing.times == "wrap")
        time += 0U - 20 * pictureTicks;
    rtsp::append(bytes, time, 4);
    rtsp::append(bytes, adds("new-source") && m_sent >= 15 ? source + 1 : source, 4);
    if (extends) // as for the times of a recording (ONVIF Streaming 6.3)
        rtsp::append(bytes, Bytes{0xab, 0xac, 0, 1, 1, 2, 3, 4});
    rtsp::append(bytes, payload);
    if (pads)
        rtsp::append(bytes, Bytes{0, 0, 0, 4});
    return std::string(bytes.begin(), bytes.end());
}

void CaseMedia::sendSound(const ScriptedCamera::Connection &connection)
{
    if (m_packing.sound.empty() || connection.isUdp() || m_sent < m_packing.soundAfter)
        return;
    constexpr int channel = 2;
    if (!m_sound.empty()) {
        connection.sendPacket(channel, m_sound[m_nextSound++ % m_sound.size()]);
        return;
    }
    Bytes bytes = {0x80, 0};
    rtsp::append(bytes, m_nextSound & 0xffff, 2);
    rtsp::append(bytes, m_nextSound * 160, 4);
    rtsp::append(bytes, source + 7, 4);
    bytes.insert(bytes.end(), 160, 0xff);
    ++m_nextSound;
    connection.sendPacket(channel, std::string(bytes.begin(), bytes.end()));
}

void CaseMedia::send(const ScriptedCamera::Connection &connection)
{
    const std::vector<Packet> packets = packetsOf(m_clip.pictures[m_next]);
    for (size_t i = 0; i < packets.size(); ++i) {
        const Packet &each = packets[i];
        const bool isLast = i + 1 == packets.size();
        const std::string &kind = m_packing.markers;
        const bool marker = kind == "right"    ? isLast
                            : kind == "sets"   ? isLast || each.isSet
                            : kind == "slices" ? each.endsNal
                                               : kind == "first" && i == 0;
        const uint8_t type = m_clip.kind == CaseClip::Kind::Jpeg ? jpegType : pictureType;
        connection.sendPicturePacket(packet(type, each.payload, marker));
    }
    sendSound(connection);
    ++m_sent;
    m_next = (m_next + 1) % m_clip.pictures.size();
}
