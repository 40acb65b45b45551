#pragma once

#include "platform/base/access_unit.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace rtsp {

/// Reads a big-endian number at an offset; the caller knows that the bytes are there.
inline uint16_t read16(std::span<const uint8_t> bytes, std::size_t at)
{
    return static_cast<uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

inline uint32_t read24(std::span<const uint8_t> bytes, std::size_t at)
{
    return uint32_t{bytes[at]} << 16 | read16(bytes, at + 1);
}

inline uint32_t read32(std::span<const uint8_t> bytes, std::size_t at)
{
    return uint32_t{read16(bytes, at)} << 16 | read16(bytes, at + 2);
}

inline uint64_t read64(std::span<const uint8_t> bytes, std::size_t at)
{
    return uint64_t{read32(bytes, at)} << 32 | read32(bytes, at + 4);
}

/// What begins at an offset; empty when that is past the end.
inline std::span<const uint8_t> restFrom(std::span<const uint8_t> bytes, std::size_t at)
{
    return at < bytes.size() ? bytes.subspan(at) : std::span<const uint8_t>();
}

/// Appends the low bytes of a number, the highest first.
inline void append(base::Bytes &bytes, uint64_t value, int count)
{
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<uint8_t>(value >> shift));
}

inline void append(base::Bytes &bytes, std::span<const uint8_t> more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

} // namespace rtsp
