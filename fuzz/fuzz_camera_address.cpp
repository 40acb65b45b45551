#include "fuzz/expect.h"
#include "platform/cammgr/camera_address.h"

#include <glib.h>

#include <cstdint>
#include <string>

using cammgr::CameraAddress;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string raw(reinterpret_cast<const char *>(data), size);
    const std::string text = raw.c_str();
    // The C interface lets nothing else through.
    if (!g_utf8_validate(text.c_str(), -1, nullptr))
        return 0;
    for (const CameraAddress &address :
         {cammgr::parseCameraAddress(text), cammgr::parseUrl(text)}) {
        if (address.kind == CameraAddress::Kind::Uid)
            FUZZ_EXPECT(!address.uid.empty() && cammgr::hasNoWhitespace(address.uid));
        if (address.kind != CameraAddress::Kind::Host)
            continue;
        FUZZ_EXPECT(address.endpoint.port != 0);
        FUZZ_EXPECT(!address.endpoint.host.empty() &&
                    cammgr::hasNoWhitespace(address.endpoint.host));
        FUZZ_EXPECT(address.path.empty() || address.path.front() == '/');
        // What is put into a request line is one word, and means the same when it is read again.
        const std::string url = cammgr::rtspOrigin(address.endpoint) + address.path;
        FUZZ_EXPECT(cammgr::hasNoWhitespace(url));
        const CameraAddress again = cammgr::parseUrl(url);
        FUZZ_EXPECT(url.size() > 2048 || again.endpoint == address.endpoint);
    }
    return 0;
}
