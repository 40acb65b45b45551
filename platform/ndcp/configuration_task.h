#pragma once

#include "platform/ndcp/ndcp.h"
#include "platform/ndcp/network_configuration.h"
#include "platform/onvif/request.h"
#include "platform/onvif/soap_client.h"
#include "platform/onvif/timer.h"

#include <glib.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace ndcp {

/// Finds the device of a record, reads its configuration and, when that is the task, writes the
/// record's.
///
/// A device of an earlier search is queried where it was found, and searched by its UID when it
/// does not answer there. Another one is queried at the record's address; to write, it must be
/// found by its UID first, because the record's address may be the one that it is to get.
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

    ConfigurationTask(GMainContext *context, Kind kind, const ndcp_device &record, Done done);

private:
    void collectPlaces();
    void tryNextPlace();
    void search();
    void tryService(const std::string &service);
    void readDone(onvif::SoapStatus status, const NetworkConfiguration &configuration);
    void write(const NetworkConfiguration &current);
    [[nodiscard]] int errorOf(onvif::SoapStatus status) const;
    void finish(int error);

    GMainContext *m_context;
    Kind m_kind;
    ndcp_device m_record;
    std::string m_uid;
    Done m_done;
    std::deque<std::string> m_places; ///< services to try, in this order
    bool m_maySearch;
    std::string m_service; ///< the one being tried
    std::unique_ptr<onvif::SoapClient> m_soap;
    onvif::RequestPtr m_request;
    onvif::Timer m_start; ///< so that done is never called inside the constructor
};

} // namespace ndcp
