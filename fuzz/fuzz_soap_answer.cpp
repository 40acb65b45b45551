#include "fuzz/expect.h"
#include "platform/base/http_login.h"
#include "platform/ndcp/device_record.h"
#include "platform/ndcp/network_configuration.h"
#include "platform/onvif/media_message.h"
#include "platform/onvif/soap_message.h"
#include "platform/onvif/xml_message.h"

#include <cstdint>
#include <string>

namespace {

void readMedia(const onvif::XmlMessage &message)
{
    const std::vector<onvif::MediaProfile> profiles = onvif::parseProfiles(message);
    FUZZ_EXPECT(profiles.size() <= onvif::maxProfiles);
    FUZZ_EXPECT(onvif::chooseProfiles(profiles).has_value() == !profiles.empty());
    const std::string stream = onvif::streamAtHost(onvif::parseStreamUri(message), "192.168.1.20");
    FUZZ_EXPECT(stream.empty() || stream.starts_with("rtsp://192.168.1.20") ||
                stream.starts_with("rtsps://192.168.1.20"));
    const auto uid = onvif::parseEndpointReference(message);
    FUZZ_EXPECT(!uid || (!uid->empty() && uid->find('/') == std::string::npos));
    const onvif::MediaServices services =
        onvif::parseMediaServices(message).value_or(onvif::MediaServices());
    for (const std::string &address : {services.media1, services.media2}) {
        const std::string service = onvif::serviceAtDevice(address, "http://192.168.1.20/device");
        FUZZ_EXPECT(service.empty() || service.starts_with("http://192.168.1.20"));
    }
}

void readConfiguration(const onvif::XmlMessage &message)
{
    ndcp::NetworkConfiguration configuration;
    const auto interfaces = onvif::parseNetworkInterfaces(message);
    if (interfaces) {
        if (const auto chosen = ndcp::chooseInterface(*interfaces, 0xC0A80114))
            configuration.interface = *chosen;
    }
    configuration.gateway = onvif::parseNetworkDefaultGateway(message);
    configuration.dns = onvif::parseDns(message);
    configuration.protocols = onvif::parseNetworkProtocols(message);
    configuration.scopes = onvif::parseScopes(message);
    if (const auto information = onvif::parseDeviceInformation(message))
        configuration.model = information->model;
    ndcp_device record = {};
    ndcp::fillRecord(record, configuration);
    FUZZ_EXPECT(record.location[sizeof record.location - 1] == '\0');
    // What was read is what is there: nothing to be written, but for addresses that are none.
    const auto change = ndcp::changeTo(record, configuration);
    FUZZ_EXPECT(change && !change->scopes && !change->protocols && !change->gateway);
}

// A header may hold any bytes: the answer stays one line.
void answerChallenge(const std::string &header)
{
    auto digest = base::HttpDigest::choose(base::parseChallenges({header}));
    const std::string answer =
        digest ? digest->authorization("POST", "/", {"user", "password"}) : std::string();
    FUZZ_EXPECT(answer.find_first_of("\r\n") == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    answerChallenge({reinterpret_cast<const char *>(data), size});
    const auto message = onvif::XmlMessage::parse({reinterpret_cast<const char *>(data), size});
    if (!message)
        return 0;
    if (const auto fault = onvif::faultIn(*message))
        FUZZ_EXPECT(fault->text.size() <= 200);
    static_cast<void>(onvif::parseSystemTime(*message));
    static_cast<void>(onvif::parseRebootNeeded(*message));
    readMedia(*message);
    readConfiguration(*message);
    return 0;
}
