#include "fuzz/expect.h"
#include "platform/rtsp/h264_bitstream.h"

#include <cstdint>
#include <vector>

// The first byte is the size of the length fields, the rest is the access unit.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const int lengthSize = 1 + data[0] % 4;
    const std::vector<std::uint8_t> unit(data + 1, data + size);
    const rtsp::SliceFacts whole = rtsp::readSliceFacts(unit, lengthSize);
    // A truncated unit contains nothing that the whole one does not.
    const std::vector<std::uint8_t> half(data + 1, data + 1 + (size - 1) / 2);
    const rtsp::SliceFacts cut = rtsp::readSliceFacts(half, lengthSize);
    FUZZ_EXPECT(whole.reference || !cut.reference);
    FUZZ_EXPECT(whole.bipredictive || !cut.bipredictive);
    return 0;
}
