#pragma once

#include "platform/onvif/soap_client.h"

#include <optional>
#include <utility>

namespace onvif {

/// Calls a service and reads its answer with parse, a function from XmlMessage to std::optional<T>.
/// An answer that cannot be read is a Fault.
template <class T, class Parse>
RequestPtr ask(SoapClient &soap, const std::string &service, const std::string &action,
               const std::string &body, Parse parse, std::function<void(SoapStatus, T)> done,
               SoapKind kind = SoapKind::Question)
{
    return soap.call(
        service, action, body, kind,
        [parse = std::move(parse), done = std::move(done)](const SoapReply &reply) {
            if (reply.status != SoapStatus::Ok) {
                done(reply.status, T{});
                return;
            }
            std::optional<T> answer = parse(*reply.message);
            if (answer)
                done(SoapStatus::Ok, std::move(*answer));
            else
                done(SoapStatus::Fault, T{});
        });
}

/// Calls a service whose answer says no more than that it was done.
inline RequestPtr tell(SoapClient &soap, const std::string &service, const std::string &action,
                       const std::string &body, SoapKind kind, std::function<void(SoapStatus)> done)
{
    return soap.call(
        service, action, body, kind,
        [done = std::move(done)](const SoapReply &reply) { done(reply.status); });
}

} // namespace onvif
