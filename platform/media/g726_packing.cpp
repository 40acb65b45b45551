#include "platform/media/g726_packing.h"

namespace media {

namespace {

constexpr int fewestBits = 2; ///< of a code
constexpr int mostBits = 5;

} // namespace

base::Bytes g726WithFirstCodeHigh(const base::Bytes &packed, int bits)
{
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

base::Bytes g726WithFirstCodeLow(const base::Bytes &packed, int bits)
{
    base::Bytes result;
    if (bits < fewestBits || bits > mostBits)
        return result;
    result.reserve(packed.size());
    const unsigned mask = (1u << bits) - 1;
    unsigned source = 0; // bits that were read and not used yet, the last ones lowest
    unsigned target = 0; // bits that were not written yet, the next ones lowest
    int sourceBits = 0;
    int targetBits = 0;
    for (const uint8_t byte : packed) {
        source = source << 8 | byte;
        sourceBits += 8;
        while (sourceBits >= bits) {
            sourceBits -= bits;
            target |= (source >> sourceBits & mask) << targetBits;
            source &= (1u << sourceBits) - 1;
            targetBits += bits;
            if (targetBits >= 8) {
                result.push_back(static_cast<uint8_t>(target));
                target >>= 8;
                targetBits -= 8;
            }
        }
    }
    return result;
}

} // namespace media
