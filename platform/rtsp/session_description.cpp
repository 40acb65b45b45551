#include "platform/rtsp/session_description.h"

#include "platform/base/text.h"
#include "platform/rtsp/depacketizer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace rtsp {

namespace {

constexpr std::size_t maxMedia = 32;
constexpr std::size_t maxFormats = 32;
constexpr std::size_t maxParameters = 64;
constexpr int maxPayloadType = 127;
constexpr int maxClockRate = 10'000'000;
constexpr int maxChannels = 64;
constexpr int maxDimension = 65535;
constexpr std::string_view blanks = " \t";

enum class Direction
{
    NotTold,
    SendOnly,
    ReceiveOnly,
    Both
};

/// Payload types that need no rtpmap (RFC 3551 6); 2 is the G.726 that cameras mean by it.
struct StaticType
{
    int payloadType;
    std::string_view encoding;
    int clockRate;
    int channels;
};

constexpr std::array<StaticType, 12> staticTypes = {{
    {0, "PCMU", 8000, 1},
    {2, "G726-32", 8000, 1},
    {3, "GSM", 8000, 1},
    {4, "G723", 8000, 1},
    {8, "PCMA", 8000, 1},
    {9, "G722", 8000, 1},
    {10, "L16", 44100, 2},
    {11, "L16", 44100, 1},
    {14, "MPA", 90000, 1},
    {18, "G729", 8000, 1},
    {26, "JPEG", 90000, 1},
    {33, "MP2T", 90000, 1},
}};

/// Takes what stands before the first separator, or all, off the front of a text.
std::string_view takeUntil(std::string_view &text, std::string_view separators)
{
    const std::size_t end = std::min(text.find_first_of(separators), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

std::string_view takeWord(std::string_view &text)
{
    text = base::trimmed(text);
    return takeUntil(text, blanks);
}

std::string upperAscii(std::string_view text)
{
    std::string upper(text);
    for (char &c : upper)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 0x20);
    return upper;
}

/// A whole decimal number between 0 and max.
std::optional<int> readNumber(std::string_view text, int max)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0 || value > max)
        return std::nullopt;
    return value;
}

PayloadFormat makeFormat(int payloadType)
{
    PayloadFormat format;
    format.payloadType = payloadType;
    for (const StaticType &known : staticTypes) {
        if (known.payloadType != payloadType)
            continue;
        format.encoding = known.encoding;
        format.clockRate = known.clockRate;
        format.channels = known.channels;
    }
    return format;
}

/// "a=x-dimensions:1920,1080", "a=framesize:96 1920-1080".
void readDimensions(MediaDescription &media, std::string_view text, std::string_view separator)
{
    const std::optional<int> width =
        readNumber(base::trimmed(takeUntil(text, separator)), maxDimension);
    const std::optional<int> height = readNumber(base::trimmed(text), maxDimension);
    if (!width || !height)
        return;
    media.width = *width;
    media.height = *height;
}

class Parser
{
public:
    bool readLine(std::string_view line);
    SessionDescription finish();

private:
    void readMedia(std::string_view text);
    void readConnection(std::string_view text);
    void readAttribute(std::string_view text);
    void readSessionAttribute(std::string_view name, std::string_view value);
    void readMediaAttribute(std::string_view name, std::string_view value);
    void readMap(std::string_view text);
    void readParameters(std::string_view text);
    PayloadFormat *findFormat(std::string_view payloadType);
    bool isBackChannel(std::size_t index) const;

    SessionDescription m_read;
    std::string m_connection;
    Direction m_direction = Direction::NotTold;
    std::vector<Direction> m_directions; ///< one for each of m_read.media
    bool m_skipsMedium = false;
};

bool Parser::readLine(std::string_view line)
{
    if (line.size() < 2 || line[1] != '=')
        return false;
    const std::string_view value = base::trimmed(line.substr(2));
    switch (line[0]) {
    case 'm':
        readMedia(value);
        break;
    case 'c':
        readConnection(value);
        break;
    case 'a':
        readAttribute(value);
        break;
    default:
        break;
    }
    return true;
}

void Parser::readMedia(std::string_view text)
{
    m_skipsMedium = m_read.media.size() >= maxMedia;
    if (m_skipsMedium)
        return;
    MediaDescription media;
    const std::string kind = base::lowerAscii(takeWord(text));
    if (kind == "video")
        media.kind = MediaKind::Video;
    else if (kind == "audio")
        media.kind = MediaKind::Audio;
    std::string_view port = takeWord(text);
    media.port = readNumber(takeUntil(port, "/"), 65535).value_or(0);
    media.protocol = takeWord(text);
    for (std::string_view word = takeWord(text); !word.empty() && media.formats.size() < maxFormats;
         word = takeWord(text))
        if (const std::optional<int> payloadType = readNumber(word, maxPayloadType))
            media.formats.push_back(makeFormat(*payloadType));
    m_read.media.push_back(std::move(media));
    m_directions.push_back(Direction::NotTold);
}

// "c=IN IP4 239.1.2.3/127"
void Parser::readConnection(std::string_view text)
{
    takeWord(text);
    takeWord(text);
    std::string_view word = takeWord(text);
    const std::string_view address = takeUntil(word, "/");
    if (m_read.media.empty())
        m_connection = address;
    else if (!m_skipsMedium)
        m_read.media.back().connection = address;
}

void Parser::readAttribute(std::string_view text)
{
    const std::string name = base::lowerAscii(base::trimmed(takeUntil(text, ":")));
    if (m_read.media.empty())
        readSessionAttribute(name, base::trimmed(text));
    else if (!m_skipsMedium)
        readMediaAttribute(name, base::trimmed(text));
}

std::optional<Direction> directionOf(std::string_view name)
{
    if (name == "sendonly")
        return Direction::SendOnly;
    if (name == "recvonly")
        return Direction::ReceiveOnly;
    if (name == "sendrecv")
        return Direction::Both;
    return std::nullopt;
}

void Parser::readSessionAttribute(std::string_view name, std::string_view value)
{
    if (name == "control")
        m_read.control = value;
    else if (name == "range")
        m_read.range = value;
    else if (const std::optional<Direction> direction = directionOf(name))
        m_direction = *direction;
}

void Parser::readMediaAttribute(std::string_view name, std::string_view value)
{
    MediaDescription &media = m_read.media.back();
    if (name == "control")
        media.control = value;
    else if (name == "range")
        media.range = value;
    else if (name == "rtpmap")
        readMap(value);
    else if (name == "fmtp")
        readParameters(value);
    else if (name == "x-dimensions")
        readDimensions(media, value, ",");
    else if (name == "framesize") {
        takeWord(value);
        readDimensions(media, value, "-");
    } else if (const std::optional<Direction> direction = directionOf(name))
        m_directions.back() = *direction;
}

PayloadFormat *Parser::findFormat(std::string_view payloadType)
{
    const std::optional<int> number = readNumber(payloadType, maxPayloadType);
    std::vector<PayloadFormat> &formats = m_read.media.back().formats;
    const auto found = std::find_if(formats.begin(), formats.end(), [&](const PayloadFormat &each) {
        return number && each.payloadType == *number;
    });
    return found == formats.end() ? nullptr : &*found;
}

// "96 H264/90000", "97 L16/44100/2"
void Parser::readMap(std::string_view text)
{
    PayloadFormat *format = findFormat(takeWord(text));
    text = base::trimmed(text);
    const std::string encoding = upperAscii(base::trimmed(takeUntil(text, "/")));
    if (!format || encoding.empty())
        return;
    const bool isStatic = format->encoding == encoding;
    const std::optional<int> rate = readNumber(base::trimmed(takeUntil(text, "/")), maxClockRate);
    const std::optional<int> channels = readNumber(base::trimmed(text), maxChannels);
    format->encoding = encoding;
    if (rate.value_or(0) > 0)
        format->clockRate = *rate;
    else if (!isStatic)
        format->clockRate = 0;
    if (channels.value_or(0) > 0)
        format->channels = *channels;
    else if (!isStatic || rate)
        format->channels = 1;
}

// "96 packetization-mode=1; sprop-parameter-sets=Z0IAKeKQ,aM48gA==;profile-level-id=42E01F"
void Parser::readParameters(std::string_view text)
{
    PayloadFormat *format = findFormat(takeWord(text));
    if (!format)
        return;
    while (!text.empty() && format->parameters.size() < maxParameters) {
        std::string_view pair = takeUntil(text, ";");
        const std::string name = base::lowerAscii(base::trimmed(takeUntil(pair, "=")));
        if (!name.empty())
            format->parameters.emplace_back(name, base::trimmed(pair));
    }
}

// RFC 4566 tells the direction from the offerer's view, RFC 2326 has no offers: cameras that offer
// a back channel mark it "sendonly", what the client has to send. Others mark "sendonly" whatever
// they send themselves, so a video of theirs tells which view it is.
bool Parser::isBackChannel(std::size_t index) const
{
    const auto told = [this](std::size_t i) {
        return m_directions[i] == Direction::NotTold ? m_direction : m_directions[i];
    };
    if (m_read.media[index].kind != MediaKind::Audio)
        return false;
    bool camerasView = m_direction == Direction::SendOnly;
    for (std::size_t i = 0; i < m_read.media.size(); ++i)
        if (m_read.media[i].kind == MediaKind::Video && told(i) == Direction::SendOnly)
            camerasView = true;
    return told(index) == (camerasView ? Direction::ReceiveOnly : Direction::SendOnly);
}

SessionDescription Parser::finish()
{
    for (std::size_t i = 0; i < m_read.media.size(); ++i) {
        MediaDescription &media = m_read.media[i];
        media.backChannel = isBackChannel(i);
        if (media.connection.empty())
            media.connection = m_connection;
        if (media.range.empty())
            media.range = m_read.range;
    }
    return std::move(m_read);
}

} // namespace

const std::string *PayloadFormat::parameter(std::string_view name) const
{
    for (const auto &[key, value] : parameters)
        if (key == name)
            return &value;
    return nullptr;
}

std::optional<int> PayloadFormat::number(std::string_view name) const
{
    const std::string *value = parameter(name);
    return value ? readNumber(*value, INT32_MAX) : std::nullopt;
}

std::optional<SessionDescription> parseSessionDescription(std::string_view text)
{
    if (text.size() > maxDescriptionSize)
        return std::nullopt;
    Parser parser;
    bool hasLine = false;
    while (!text.empty())
        hasLine |= parser.readLine(takeUntil(text, "\r\n"));
    if (!hasLine)
        return std::nullopt;
    return parser.finish();
}

const PayloadFormat *playableFormat(const MediaDescription &media)
{
    const auto found =
        std::find_if(media.formats.begin(), media.formats.end(),
                     [&](const PayloadFormat &format) { return canDepacketize(media, format); });
    return found == media.formats.end() ? nullptr : &*found;
}

bool isPlayable(const MediaDescription &media)
{
    return !media.backChannel && playableFormat(media);
}

} // namespace rtsp
