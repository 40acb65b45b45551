#include "platform/rtsp/nal_units.h"

namespace rtsp {

namespace {

int base64Value(char c)
{
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+' || c == '-')
        return 62;
    if (c == '/' || c == '_')
        return 63;
    return -1;
}

} // namespace

std::span<const uint8_t> withoutTrailingZeros(std::span<const uint8_t> bytes)
{
    while (!bytes.empty() && bytes.back() == 0)
        bytes = bytes.first(bytes.size() - 1);
    return bytes;
}

std::optional<std::size_t> findStartCode(std::span<const uint8_t> bytes)
{
    std::size_t at = 0;
    while (at + 2 < bytes.size()) {
        // Most bytes tell that no start code ends in the next three.
        if (bytes[at + 2] > 1)
            at += 3;
        else if (bytes[at] == 0 && bytes[at + 1] == 0 && bytes[at + 2] == 1)
            return at;
        else
            ++at;
    }
    return std::nullopt;
}

bool beginsWithStartCode(std::span<const uint8_t> bytes)
{
    return bytes.size() > 3 && bytes[0] == 0 && bytes[1] == 0 &&
           (bytes[2] == 1 || (bytes[2] == 0 && bytes[3] == 1));
}

base::Bytes decodeBase64(std::string_view text)
{
    base::Bytes bytes;
    uint32_t buffer = 0;
    int bits = 0;
    for (const char c : text) {
        if (c == ' ' || c == '\t' || c == '"')
            continue;
        const int value = base64Value(c);
        if (value < 0)
            break;
        buffer = (buffer << 6 | static_cast<uint32_t>(value)) & 0xffffff;
        bits += 6;
        if (bits < 8)
            continue;
        bits -= 8;
        bytes.push_back(static_cast<uint8_t>(buffer >> bits));
    }
    return bytes;
}

} // namespace rtsp
