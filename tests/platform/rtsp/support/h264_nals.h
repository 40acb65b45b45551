#pragma once

#include "tests/platform/rtsp/support/rtp_stream.h"

namespace rtsp {

/// Sets of an encoder: High profile, 64x48, with B frames; and interlaced.
inline const Bytes h264Sps = bytesOf("6764000aacd9447b011000000300100000030320f1225960");
inline const Bytes h264Pps = bytesOf("68ebe3cb22c0");
inline const Bytes h264InterlacedSps =
    bytesOf("67640015acd9444fcb808800000300080000030190f8a14cb0");
inline const Bytes h264InterlacedPps = bytesOf("68fba3cb22c0");

struct SliceOptions
{
    unsigned firstMacroblock = 0;
    unsigned type = 5; ///< P
    uint8_t refIdc = 2;
    std::size_t size = 40; ///< of the content behind the header, bytes
    uint8_t content = 0x5a;
};

/// A slice with a header that is right and a content that no decoder would like.
inline Bytes h264Slice(uint8_t nalType, const SliceOptions &options)
{
    BitWriter writer;
    writer.ue(options.firstMacroblock).ue(options.type).ue(0).bits(0, 4);
    return joined({{static_cast<uint8_t>(options.refIdc << 5 | nalType)},
                   writer.finish(),
                   Bytes(options.size, options.content)});
}

inline Bytes idrSlice(unsigned firstMacroblock = 0, std::size_t size = 40)
{
    return h264Slice(5, {.firstMacroblock = firstMacroblock, .type = 7, .refIdc = 3, .size = size});
}

inline Bytes pSlice(unsigned firstMacroblock = 0, uint8_t content = 0x5a)
{
    return h264Slice(1, {.firstMacroblock = firstMacroblock, .content = content});
}

inline Bytes bSlice(unsigned firstMacroblock = 0)
{
    return h264Slice(1, {.firstMacroblock = firstMacroblock, .type = 6, .refIdc = 0});
}

inline const Bytes h264Delimiter = {0x09, 0xf0};
inline const Bytes h264RecoveryPoint = {0x06, 0x06, 0x01, 0xc4, 0x80};

inline Bytes stapA(std::initializer_list<Bytes> nals)
{
    Bytes packet = {0x78};
    for (const Bytes &nal : nals) {
        append(packet, nal.size(), 2);
        append(packet, nal);
    }
    return packet;
}

/// The fragments (FU-A) of a NAL unit, with so many bytes of it in each.
inline std::vector<Bytes> fragmentsA(const Bytes &nal, std::size_t size)
{
    std::vector<Bytes> fragments;
    for (std::size_t from = 1; from < nal.size(); from += size) {
        const std::size_t to = std::min(nal.size(), from + size);
        Bytes fragment = {static_cast<uint8_t>((nal[0] & 0xe0) | 28),
                          static_cast<uint8_t>((from == 1 ? 0x80 : 0) |
                                               (to == nal.size() ? 0x40 : 0) | (nal[0] & 0x1f))};
        fragment.insert(fragment.end(), nal.begin() + static_cast<std::ptrdiff_t>(from),
                        nal.begin() + static_cast<std::ptrdiff_t>(to));
        fragments.push_back(std::move(fragment));
    }
    return fragments;
}

inline Bytes withStartCodes(std::initializer_list<Bytes> nals)
{
    Bytes all;
    for (const Bytes &nal : nals) {
        append(all, 1, 4);
        append(all, nal);
    }
    return all;
}

} // namespace rtsp
