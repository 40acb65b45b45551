#include "platform/rtsp/rtcp.h"

#include "platform/rtsp/byte_order.h"

#include <algorithm>

namespace rtsp {

namespace {

constexpr uint8_t senderReportType = 200;
constexpr uint8_t receiverReportType = 201;
constexpr uint8_t descriptionType = 202;
constexpr uint8_t goodbyeType = 203;
constexpr uint8_t canonicalName = 1; ///< item of a source description
constexpr std::size_t headerSize = 4;
constexpr std::size_t senderReportSize = 28; ///< without blocks
constexpr std::size_t maxNameSize = 255;

void readGoodbye(std::span<const uint8_t> packet, RtcpNews &news)
{
    const std::size_t told = packet[0] & 0x1f;
    const std::size_t count = std::min(told, packet.size() / 4 - 1);
    for (std::size_t i = 0; i < count; ++i)
        news.goodbyes.push_back(read32(packet, headerSize + 4 * i));
}

void appendHeader(base::Bytes &bytes, int count, uint8_t type, std::size_t size)
{
    bytes.push_back(static_cast<uint8_t>(0x80 | count));
    bytes.push_back(type);
    append(bytes, size / 4 - 1, 2);
}

/// A source description with the canonical name (RFC 3550 6.5).
void appendDescription(base::Bytes &bytes, uint32_t source, std::string_view name)
{
    name = name.substr(0, maxNameSize);
    // The list of items ends with a zero and is filled up to whole words.
    const std::size_t padding = 4 - (2 + name.size()) % 4;
    appendHeader(bytes, 1, descriptionType, headerSize + 4 + 2 + name.size() + padding);
    append(bytes, source, 4);
    bytes.push_back(canonicalName);
    bytes.push_back(static_cast<uint8_t>(name.size()));
    bytes.insert(bytes.end(), name.begin(), name.end());
    bytes.insert(bytes.end(), padding, 0);
}

} // namespace

RtcpNews parseRtcp(std::span<const uint8_t> bytes)
{
    RtcpNews news;
    while (bytes.size() >= headerSize && bytes[0] >> 6 == 2) {
        const std::size_t size = headerSize + std::size_t{4} * read16(bytes, 2);
        if (size > bytes.size())
            break;
        const std::span<const uint8_t> packet = bytes.first(size);
        if (packet[1] == senderReportType && size >= senderReportSize)
            news.report = {read32(packet, 4), read64(packet, 8), read32(packet, 16)};
        else if (packet[1] == goodbyeType)
            readGoodbye(packet, news);
        bytes = bytes.subspan(size);
    }
    return news;
}

base::Bytes makeReceiverReport(uint32_t ownSource, std::string_view name,
                               const std::optional<ReportBlock> &block)
{
    base::Bytes bytes;
    appendHeader(bytes, block ? 1 : 0, receiverReportType, block ? 32 : 8);
    append(bytes, ownSource, 4);
    if (block) {
        append(bytes, block->source, 4);
        bytes.push_back(block->fractionLost);
        append(bytes, static_cast<uint32_t>(block->lost) & 0xffffff, 3);
        append(bytes, block->highestNumber, 4);
        append(bytes, block->jitter, 4);
        append(bytes, block->lastReport, 4);
        append(bytes, block->delaySinceReport, 4);
    }
    appendDescription(bytes, ownSource, name);
    return bytes;
}

base::Bytes makeSenderReport(const SenderReport &report, std::string_view name, uint32_t packets,
                             uint32_t bytes)
{
    base::Bytes result;
    appendHeader(result, 0, senderReportType, senderReportSize);
    append(result, report.source, 4);
    append(result, report.ntpTime >> 32, 4);
    append(result, report.ntpTime & 0xffffffff, 4);
    append(result, report.rtpTime, 4);
    append(result, packets, 4);
    append(result, bytes, 4);
    appendDescription(result, report.source, name);
    return result;
}

} // namespace rtsp
