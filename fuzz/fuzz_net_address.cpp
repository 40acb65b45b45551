#include "fuzz/expect.h"
#include "platform/onvif/net_address.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    if (const auto ipv4 = onvif::parseIpv4(text))
        FUZZ_EXPECT(onvif::ipv4Text(*ipv4) == text);
    if (const auto address = onvif::parseHttpAddress(text)) {
        FUZZ_EXPECT(address->port > 0 && address->port <= 65'535);
        FUZZ_EXPECT(address->path.front() == '/');
        FUZZ_EXPECT(address->text().find_first_of("\r\n ") == std::string::npos);
    }
    const std::string stream = onvif::streamAtHost(text, "fe80::1");
    FUZZ_EXPECT(stream.empty() || stream.starts_with("rtsp://[fe80::1]") ||
                stream.starts_with("rtsps://[fe80::1]"));
    const std::string service = onvif::serviceAtDevice(text, "https://192.168.1.20:8443/device");
    FUZZ_EXPECT(service.empty() || service.starts_with("https://192.168.1.20"));
    FUZZ_EXPECT(onvif::chooseXAddr({std::string(text)}, "127.0.0.1", 0).find("://127.") !=
                std::string::npos);
    return 0;
}
