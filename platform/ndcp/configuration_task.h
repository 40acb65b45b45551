#pragma once

#include "platform/base/timer.h"
#include "platform/ndcp/configuration_times.h"
#include "platform/ndcp/ndcp.h"
#include "platform/ndcp/network_configuration.h"
#include "platform/onvif/request.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ndcp {

/// Finds the device of a record, reads its configuration and, when that is the task, writes the
/// record's.
///
/// A device of an earlier search is queried where it was found, another one at the record's
/// address. The device there is compared with the record by hardware address; where it is not the
/// device, or nothing can be read, the device is looked for by its UID. Nothing is written to a
/// device that was identified neither by its hardware address nor by its UID, nor to one without a
/// UID at an address that may be the one that it is to get.
class ConfigurationTask : public onvif::Request
{
public:
    enum class Kind
    {
        Read,
        Write
    };

    /// error: 0 or an NDCP_ERROR_ value. record: the one given, after a successful read with the
    /// device's configuration.
    using Done = std::function<void(int error, const ndcp_device &record)>;

    ConfigurationTask(GMainContext *context, Kind kind, const ndcp_device &record, Done done,
                      const ConfigurationTimes &times = {});

private:
    /// What was found where the device was first queried.
    struct Answer
    {
        std::string service;
        onvif::SoapStatus status = onvif::SoapStatus::NoAnswer;
        NetworkConfiguration configuration;
    };

    [[nodiscard]] std::string rememberedService() const;
    void start();
    void tryService(const std::string &service, bool isFoundByUid);
    void readDone(Answer answer, bool isFoundByUid);
    [[nodiscard]] bool isTheDevice(const NetworkConfiguration &configuration) const;
    void search(Answer before);
    void take(const Answer &answer);
    void write(const Answer &answer);
    void finishWith(const Answer &answer);
    [[nodiscard]] int errorOf(onvif::SoapStatus status, int fault) const;
    void finish(int error);

    GMainContext *m_context;
    Kind m_kind;
    ndcp_device m_record;
    std::string m_uid;
    Done m_done;
    ConfigurationTimes m_times;
    std::unique_ptr<onvif::SoapClient> m_soap;
    onvif::RequestPtr m_request;
    base::Timer m_start; ///< so that done is never called inside the constructor
};

} // namespace ndcp
