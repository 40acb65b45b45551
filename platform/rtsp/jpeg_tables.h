#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace rtsp {

/// The two quantization tables, luma first, in zigzag order, that a quality from 1 to 99 means
/// (RFC 2435 4.2 and appendix A).
[[nodiscard]] std::array<uint8_t, 128> jpegTablesOf(unsigned quality);

/// The segments with the Huffman tables that all RTP streams of JPEG use (RFC 2435 appendix B,
/// ITU-T T.81 K.3).
[[nodiscard]] std::span<const uint8_t> jpegHuffmanSegments();

} // namespace rtsp
