#include "fuzz/expect.h"
#include "platform/base/camera_address.h"

#include <glib.h>

#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string raw(reinterpret_cast<const char *>(data), size);
    const std::string text = raw.c_str();
    // The C interface lets nothing else through.
    if (!g_utf8_validate(text.c_str(), -1, nullptr))
        return 0;
    for (const base::CameraAddress &address :
         {base::parseCameraAddress(text), base::parseUrl(text)}) {
        if (address.kind == base::CameraAddress::Kind::Uid)
            FUZZ_EXPECT(!address.uid.empty() && base::hasNoWhitespace(address.uid));
        if (address.kind != base::CameraAddress::Kind::Host)
            continue;
        FUZZ_EXPECT(address.endpoint.port != 0);
        FUZZ_EXPECT(!address.endpoint.host.empty() && base::hasNoWhitespace(address.endpoint.host));
        FUZZ_EXPECT(address.path.empty() || address.path.front() == '/');
        // What is put into a request line is one word, and means the same when it is read again.
        const std::string url = base::rtspOrigin(address.endpoint) + address.path;
        FUZZ_EXPECT(base::hasNoWhitespace(url));
        const base::CameraAddress again = base::parseUrl(url);
        FUZZ_EXPECT(url.size() > 2048 || again.endpoint == address.endpoint);
    }
    return 0;
}
