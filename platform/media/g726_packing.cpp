#include "platform/media/g726_packing.h"

namespace media {

base::Bytes g726WithFirstCodeHigh(const base::Bytes &packed, int bits)
{
    constexpr int fewestBits = 2;
    constexpr int mostBits = 5;
    base::Bytes result;
    if (bits < fewestBits || bits > mostBits)
        return result;
    result.reserve(packed.size());
    const unsigned mask = (1u << bits) - 1;
    unsigned source = 0; // bits that were read and not used yet, the next ones lowest
    unsigned target = 0; // bits that were not written yet, the last ones lowest
    int sourceBits = 0;
    int targetBits = 0;
    for (const uint8_t byte : packed) {
        source |= static_cast<unsigned>(byte) << sourceBits;
        sourceBits += 8;
        while (sourceBits >= bits) {
            target = target << bits | (source & mask);
            source >>= bits;
            sourceBits -= bits;
            targetBits += bits;
            if (targetBits >= 8) {
                targetBits -= 8;
                result.push_back(static_cast<uint8_t>(target >> targetBits));
                target &= (1u << targetBits) - 1;
            }
        }
    }
    return result;
}

} // namespace media
