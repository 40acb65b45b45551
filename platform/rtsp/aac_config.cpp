#include "platform/rtsp/aac_config.h"

#include <algorithm>
#include <array>

namespace rtsp {

namespace {

constexpr std::array<int, 13> rates = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                       22050, 16000, 12000, 11025, 8000,  7350};
constexpr unsigned explicitRate = 15;
constexpr unsigned lowComplexity = 2; ///< audio object types
constexpr unsigned spectralBand = 5;
constexpr unsigned parametricStereo = 29;
constexpr unsigned escapeType = 31;
constexpr int maxRate = 192000;
constexpr unsigned maxChannelConfiguration = 7;

unsigned readObjectType(BitReader &reader)
{
    const unsigned type = reader.bits(5);
    return type == escapeType ? 32 + reader.bits(6) : type;
}

int readRate(BitReader &reader)
{
    const unsigned index = reader.bits(4);
    if (index == explicitRate)
        return static_cast<int>(reader.bits(24));
    return index < rates.size() ? rates[index] : 0;
}

/// Those of AAC itself, whose GASpecificConfig is known here.
bool isGeneralAudio(unsigned type)
{
    return (type >= 1 && type <= 4) || type == 6 || type == 7 || type == 17 || type == 19 ||
           type == 20 || type == 23;
}

bool isScalable(unsigned type)
{
    return type == 6 || type == 20;
}

bool isErrorResilient(unsigned type)
{
    return type >= 17;
}

/// program_config_element (ISO/IEC 14496-3 4.4.1.1); gives its channels.
int readProgram(BitReader &reader, std::size_t start)
{
    reader.skip(4 + 2 + 4);
    const unsigned front = reader.bits(4);
    const unsigned side = reader.bits(4);
    const unsigned back = reader.bits(4);
    const unsigned low = reader.bits(2);
    const unsigned data = reader.bits(3);
    const unsigned coupling = reader.bits(4);
    if (reader.flag())
        reader.skip(4);
    if (reader.flag())
        reader.skip(4);
    if (reader.flag())
        reader.skip(3);
    int channels = static_cast<int>(low);
    for (unsigned i = 0; i < front + side + back; ++i) {
        channels += reader.flag() ? 2 : 1;
        reader.skip(4);
    }
    reader.skip(static_cast<int>(4 * (low + data) + 5 * coupling));
    const std::size_t used = reader.position() - start;
    reader.skip(static_cast<int>((8 - used % 8) % 8));
    const unsigned comment = reader.bits(8);
    reader.skip(static_cast<int>(8 * comment));
    return channels;
}

void readGeneralAudio(BitReader &reader, AacConfig &config, unsigned type, unsigned channels,
                      std::size_t start)
{
    config.frameSamples = reader.flag() ? 960 : 1024;
    if (type == 23) // low delay
        config.frameSamples /= 2;
    if (reader.flag())
        reader.skip(14); // coreCoderDelay
    const bool extension = reader.flag();
    if (channels == 0)
        config.channels = readProgram(reader, start);
    if (isScalable(type))
        reader.skip(3);
    if (!extension)
        return;
    if (isErrorResilient(type))
        reader.skip(3);
    reader.skip(1);
}

} // namespace

std::optional<AacConfig> readAacConfig(BitReader &reader)
{
    const std::size_t start = reader.position();
    AacConfig config;
    unsigned type = readObjectType(reader);
    config.rate = readRate(reader);
    const unsigned channels = reader.bits(4);
    if (type == spectralBand || type == parametricStereo) {
        readRate(reader); // of the extension
        type = readObjectType(reader);
    }
    config.objectType = type;
    config.channels = channels == 7 ? 8 : static_cast<int>(channels);
    if (!reader.good() || !isGeneralAudio(type) || config.rate < 1 || config.rate > maxRate ||
        channels > maxChannelConfiguration)
        return std::nullopt;
    readGeneralAudio(reader, config, type, channels, start);
    if (isErrorResilient(type))
        reader.skip(2); // epConfig
    if (!reader.good() || config.channels < 1)
        return std::nullopt;
    return config;
}

std::optional<AacConfig> parseAacConfig(std::span<const uint8_t> bytes)
{
    BitReader reader(bytes);
    return readAacConfig(reader);
}

std::optional<base::Bytes> makeAacConfig(int rate, int channels)
{
    const auto index = std::find(rates.begin(), rates.end(), rate) - rates.begin();
    const int configuration = channels == 8 ? 7 : channels;
    if (index == static_cast<std::ptrdiff_t>(rates.size()) || configuration < 1 ||
        configuration > static_cast<int>(maxChannelConfiguration))
        return std::nullopt;
    const unsigned bits = lowComplexity << 11 | static_cast<unsigned>(index) << 7 |
                          static_cast<unsigned>(configuration) << 3;
    return base::Bytes{static_cast<uint8_t>(bits >> 8), static_cast<uint8_t>(bits)};
}

std::shared_ptr<const base::AudioFormat> makeAacFormat(std::span<const uint8_t> configuration,
                                                       int rate, int channels)
{
    auto format = std::make_shared<base::AudioFormat>();
    format->codec = base::AudioCodec::Aac;
    if (const std::optional<AacConfig> told = parseAacConfig(configuration)) {
        format->configuration.assign(configuration.begin(), configuration.end());
        format->rate = told->rate;
        format->channels = told->channels;
        return format;
    }
    std::optional<base::Bytes> made = makeAacConfig(rate, channels);
    if (!made)
        return nullptr;
    format->configuration = std::move(*made);
    format->rate = rate;
    format->channels = channels;
    return format;
}

namespace {

/// LatmGetValue (ISO/IEC 14496-3 1.7.3.1)
uint32_t readLatmValue(BitReader &reader)
{
    const unsigned bytes = reader.bits(2) + 1;
    return reader.bits(static_cast<int>(8 * bytes));
}

bool readOtherData(BitReader &reader, LatmConfig &config, bool secondVersion)
{
    constexpr unsigned maxBits = 1 << 16;
    if (!reader.flag())
        return true;
    if (secondVersion) {
        config.otherDataBits = readLatmValue(reader);
        return config.otherDataBits <= maxBits;
    }
    bool more = true;
    while (more && reader.good() && config.otherDataBits <= maxBits) {
        more = reader.flag();
        config.otherDataBits = config.otherDataBits << 8 | reader.bits(8);
    }
    return config.otherDataBits <= maxBits;
}

} // namespace

std::optional<LatmConfig> readLatmConfig(BitReader &reader, std::span<const uint8_t> bytes)
{
    LatmConfig config;
    const bool secondVersion = reader.flag();
    if (secondVersion && reader.flag()) // audioMuxVersionA: reserved
        return std::nullopt;
    if (secondVersion)
        readLatmValue(reader); // taraBufferFullness
    reader.skip(1);            // allStreamsSameTimeFraming
    config.subFrames = reader.bits(6) + 1;
    const unsigned programs = reader.bits(4) + 1;
    const unsigned layers = reader.bits(3) + 1;
    if (programs != 1 || layers != 1)
        return std::nullopt;
    const uint32_t told = secondVersion ? readLatmValue(reader) : 0;
    const std::size_t first = reader.position();
    const std::optional<AacConfig> aac = readAacConfig(reader);
    if (!aac)
        return std::nullopt;
    config.aac = *aac;
    std::size_t size = reader.position() - first;
    if (secondVersion && told >= size && told - size <= reader.left()) {
        reader.skip(static_cast<int>(told - size));
        size = told;
    }
    config.configuration = copyBits(bytes, first, size);
    config.frameLengthType = reader.bits(3);
    if (config.frameLengthType == 0)
        reader.skip(8); // latmBufferFullness
    else if (config.frameLengthType == 1)
        config.fixedFrameSize = 8 * (reader.bits(9) + 20);
    else
        return std::nullopt; // of other codecs
    if (!reader.good())
        return std::nullopt;
    if (reader.left() == 0) // cameras leave out what would be zeros
        return config;
    if (!readOtherData(reader, config, secondVersion))
        return std::nullopt;
    if (reader.left() > 0 && reader.flag())
        reader.skip(8); // crcCheckSum
    return config;
}

base::Bytes decodeHex(std::string_view text)
{
    base::Bytes bytes;
    int high = -1;
    for (const char c : text) {
        int value = -1;
        if (c >= '0' && c <= '9')
            value = c - '0';
        else if (c >= 'a' && c <= 'f')
            value = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F')
            value = c - 'A' + 10;
        else
            return {};
        if (high < 0) {
            high = value;
            continue;
        }
        bytes.push_back(static_cast<uint8_t>(high << 4 | value));
        high = -1;
    }
    if (high >= 0) // the bits of LATM need not fill whole bytes
        bytes.push_back(static_cast<uint8_t>(high << 4));
    return bytes;
}

base::Bytes copyBits(std::span<const uint8_t> bytes, std::size_t first, std::size_t count)
{
    base::Bytes copy;
    copy.reserve((count + 7) / 8);
    const unsigned shift = first % 8;
    for (std::size_t done = 0; done < count; done += 8) {
        const std::size_t at = (first + done) / 8;
        unsigned value = bytes[at] << shift;
        if (shift > 0 && at + 1 < bytes.size())
            value |= bytes[at + 1] >> (8 - shift);
        copy.push_back(static_cast<uint8_t>(value));
    }
    if (count % 8 != 0)
        copy.back() = static_cast<uint8_t>(copy.back() & (0xff00 >> count % 8));
    return copy;
}

} // namespace rtsp
