#include "platform/ndcp/configuration_task.h"

#include "platform/base/text.h"
#include "platform/ndcp/configuration_reader.h"
#include "platform/ndcp/configuration_writer.h"
#include "platform/ndcp/device_record.h"
#include "platform/ndcp/known_devices.h"
#include "platform/ndcp/log.h"
#include "platform/onvif/discovery_search.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ndcp {

using onvif::SoapStatus;

namespace {

std::string validText(const std::string &text)
{
    return base::GTextPtr(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()))).get();
}

base::Credentials credentialsOf(const ndcp_device &record)
{
    return {validText(fieldText(record.username)), validText(fieldText(record.password))};
}

std::optional<onvif::MacAddress> macOf(const ndcp_device &record)
{
    onvif::MacAddress mac = {};
    std::copy(std::begin(record.mac), std::end(record.mac), mac.begin());
    return mac == onvif::MacAddress{} ? std::nullopt : std::optional(mac);
}

} // namespace

ConfigurationTask::ConfigurationTask(GMainContext *context, Kind kind, const ndcp_device &record,
                                     Done done, const ConfigurationTimes &times)
    : m_context(context)
    , m_kind(kind)
    , m_record(record)
    , m_uid(base::uidFromEndpoint(fieldText(record.uid)))
    , m_done(std::move(done))
    , m_times(times)
    , m_start(context, std::chrono::milliseconds(0), [this] { start(); })
{
    // Any host may claim a UID.
    m_times.soap.clearPassword =
        m_uid.empty() ? onvif::ClearPassword::AsLastResort : onvif::ClearPassword::Never;
}

std::string ConfigurationTask::rememberedService() const
{
    const std::string known = KnownDevices::instance().device(m_uid).service;
    const bool isRecordRight = m_kind == Kind::Read || m_uid.empty();
    if (known.empty() && isRecordRight && m_record.ip != 0)
        return onvif::usualDeviceService(onvif::ipv4Text(m_record.ip), httpPort(m_record));
    return known;
}

void ConfigurationTask::start()
{
    const std::string service = rememberedService();
    if (service.empty())
        search({});
    else
        tryService(service, false);
}

void ConfigurationTask::tryService(const std::string &service, bool isFoundByUid)
{
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "reading %s at %s", m_uid.c_str(), service.c_str());
    m_request.reset();
    m_soap = std::make_unique<onvif::SoapClient>(m_context, service, credentialsOf(m_record),
                                                 m_times.soap);
    m_request = std::make_unique<ConfigurationReader>(
        *m_soap, m_record.model[0] == '\0',
        [this, service, isFoundByUid](SoapStatus status, NetworkConfiguration configuration) {
            readDone({service, status, std::move(configuration)}, isFoundByUid);
        });
}

void ConfigurationTask::readDone(Answer answer, bool isFoundByUid)
{
    const bool isRight =
        isFoundByUid || (answer.status == SoapStatus::Ok && isTheDevice(answer.configuration));
    if (isRight || m_uid.empty())
        finishWith(answer);
    else
        search(std::move(answer));
}

// By its hardware address. Without one, reading is allowed and writing is not.
bool ConfigurationTask::isTheDevice(const NetworkConfiguration &configuration) const
{
    const std::optional<onvif::MacAddress> mac = macOf(m_record);
    const std::vector<onvif::MacAddress> &macs = configuration.macs;
    if (!mac || macs.empty())
        return m_kind == Kind::Read;
    return std::find(macs.begin(), macs.end(), *mac) != macs.end();
}

void ConfigurationTask::search(Answer before)
{
    if (m_uid.empty()) {
        finish(NDCP_ERROR_NETWORK);
        return;
    }
    onvif::SearchScope scope = onvif::SearchScope::fromEnvironment();
    scope.uid = m_uid;
    scope.milliseconds = m_times.search;
    scope.isWanted = [uid = m_uid](const onvif::DiscoveredDevice &device) {
        return base::sameUid(device.uid, uid);
    };
    m_request = std::make_unique<onvif::DiscoverySearch>(
        m_context, std::move(scope),
        [this, before = std::move(before)](const onvif::SearchResult &result) {
            const std::string found = result.wanted ? result.wanted->serviceAddress : std::string();
            g_log(logDomain, G_LOG_LEVEL_DEBUG, "looked for %s: %s", m_uid.c_str(),
                  found.empty() ? "no answer" : found.c_str());
            const bool wasRead = before.status == SoapStatus::Ok;
            if (!found.empty() && found != before.service)
                tryService(found, true);
            else if (!found.empty() || !wasRead)
                finishWith(Answer(before));
            else
                finish(NDCP_ERROR_NETWORK); // another device is there
        });
}

void ConfigurationTask::finishWith(const Answer &answer)
{
    if (answer.status == SoapStatus::Ok)
        take(answer);
    else
        finish(errorOf(answer.status, NDCP_ERROR_GET_CONF));
}

void ConfigurationTask::take(const Answer &answer)
{
    KnownDevices::instance().setService(m_uid, answer.service);
    KnownDevices::instance().setWebPort(m_uid, webPort(answer.configuration));
    if (m_kind == Kind::Write) {
        write(answer);
        return;
    }
    fillRecord(m_record, answer.configuration);
    KnownDevices::instance().setRecord(m_uid, m_record);
    finish(0);
}

void ConfigurationTask::write(const Answer &answer)
{
    const std::optional<ndcp_device> base = KnownDevices::instance().device(m_uid).record;
    if (!changeTo(m_record, answer.configuration, base)) {
        g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: the record was never read: nothing is written",
              m_uid.c_str());
        finish(NDCP_ERROR_GET_CONF);
        return;
    }
    m_request = std::make_unique<ConfigurationWriter>(
        m_context, ConfigurationWriter::Target{answer.service, m_uid, credentialsOf(m_record)},
        m_record, base, answer.configuration, m_times,
        [this](SoapStatus status, const std::string &service) {
            KnownDevices::instance().setService(m_uid, service);
            // What a failed writing has left is not known before it is read again.
            const bool isKnown = status == SoapStatus::Ok && wasRead(m_record, ReadInterface);
            KnownDevices::instance().setRecord(m_uid,
                                               isKnown ? std::optional(m_record) : std::nullopt);
            if (status == SoapStatus::Ok && isPortChanged(m_record))
                KnownDevices::instance().setWebPort(m_uid, httpPort(m_record));
            finish(errorOf(status, NDCP_ERROR_SET_CONF));
        });
}

int ConfigurationTask::errorOf(SoapStatus status, int fault) const
{
    switch (status) {
    case SoapStatus::Ok:
        return 0;
    case SoapStatus::NoAnswer:
        return NDCP_ERROR_NETWORK;
    case SoapStatus::Refused:
        return NDCP_ERROR_AUTHORIZATION;
    case SoapStatus::Fault:
        break;
    }
    return fault;
}

void ConfigurationTask::finish(int error)
{
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s of %s ends with %d",
          m_kind == Kind::Read ? "reading" : "writing", m_uid.c_str(), error);
    // The receiver may destroy this object.
    const Done done = std::move(m_done);
    const ndcp_device record = m_record;
    done(error, record);
}

} // namespace ndcp
