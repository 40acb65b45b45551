#include "fuzz/expect.h"
#include "platform/base/certificate_key.h"

#include <cstdint>
#include <vector>

// What a TLS server gives out as its certificate.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::uint8_t> bytes(data, data + size);
    if (const auto key = base::publicKeyOf(bytes)) {
        FUZZ_EXPECT(key->size() > 2 && key->size() < size);
        FUZZ_EXPECT(key->data() > bytes.data());
        FUZZ_EXPECT(key->data() + key->size() <= bytes.data() + size);
    }
    return 0;
}
