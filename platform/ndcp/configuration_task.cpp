#include "platform/ndcp/configuration_task.h"

#include "platform/ndcp/configuration_reader.h"
#include "platform/ndcp/configuration_writer.h"
#include "platform/ndcp/device_record.h"
#include "platform/ndcp/known_devices.h"
#include "platform/onvif/discovery_search.h"
#include "platform/onvif/text.h"

namespace ndcp {

using onvif::SoapStatus;

namespace {

onvif::Credentials credentialsOf(const ndcp_device &record)
{
    return {typedText(fieldText(record.username)), typedText(fieldText(record.password))};
}

} // namespace

ConfigurationTask::ConfigurationTask(GMainContext *context, Kind kind, const ndcp_device &record,
                                     Done done)
    : m_context(context)
    , m_kind(kind)
    , m_record(record)
    , m_uid(onvif::uidFromEndpoint(fieldText(record.uid)))
    , m_done(std::move(done))
    , m_maySearch(!m_uid.empty())
    , m_start(context, 0, [this] { tryNextPlace(); })
{
    collectPlaces();
}

void ConfigurationTask::collectPlaces()
{
    const std::string known = KnownDevices::instance().service(m_uid);
    const bool isRecordRight = m_kind == Kind::Read || m_uid.empty();
    if (!known.empty())
        m_places.push_back(known);
    else if (isRecordRight && m_record.ip != 0)
        m_places.push_back(
            onvif::usualDeviceService(onvif::ipv4Text(m_record.ip), httpPort(m_record)));
}

void ConfigurationTask::tryNextPlace()
{
    if (!m_places.empty()) {
        const std::string service = m_places.front();
        m_places.pop_front();
        tryService(service);
    } else if (m_maySearch) {
        m_maySearch = false;
        search();
    } else {
        finish(NDCP_ERROR_NETWORK);
    }
}

void ConfigurationTask::search()
{
    onvif::SearchScope scope = onvif::SearchScope::fromEnvironment();
    scope.uid = m_uid;
    const auto isWanted = [uid = m_uid](const onvif::DiscoveredDevice &device) {
        return onvif::sameUid(device.uid, uid);
    };
    scope.isEnough = isWanted;
    m_request = std::make_unique<onvif::DiscoverySearch>(
        m_context, std::move(scope),
        [this, isWanted](const std::vector<onvif::DiscoveredDevice> &devices) {
            // Where it did not answer before, it need not be queried again.
            if (!devices.empty() && isWanted(devices.back()) &&
                devices.back().serviceAddress != m_service)
                m_places.push_back(devices.back().serviceAddress);
            tryNextPlace();
        });
}

void ConfigurationTask::tryService(const std::string &service)
{
    m_service = service;
    m_request.reset();
    m_soap = std::make_unique<onvif::SoapClient>(m_context, service, credentialsOf(m_record));
    m_request = std::make_unique<ConfigurationReader>(
        *m_soap, m_record.model[0] == '\0',
        [this](SoapStatus status, const NetworkConfiguration &configuration) {
            readDone(status, configuration);
        });
}

void ConfigurationTask::readDone(SoapStatus status, const NetworkConfiguration &configuration)
{
    if (status == SoapStatus::NoAnswer) {
        tryNextPlace();
        return;
    }
    if (status != SoapStatus::Ok) {
        finish(errorOf(status));
        return;
    }
    KnownDevices::instance().setService(m_uid, m_service);
    if (m_kind == Kind::Write) {
        write(configuration);
    } else {
        fillRecord(m_record, configuration);
        finish(0);
    }
}

void ConfigurationTask::write(const NetworkConfiguration &current)
{
    m_request = std::make_unique<ConfigurationWriter>(
        m_context, m_service, credentialsOf(m_record), m_uid, changeTo(m_record, current),
        [this](SoapStatus status, const std::string &service) {
            KnownDevices::instance().setService(m_uid, service);
            finish(errorOf(status));
        });
}

int ConfigurationTask::errorOf(SoapStatus status) const
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
    return m_kind == Kind::Read ? NDCP_ERROR_GET_CONF : NDCP_ERROR_SET_CONF;
}

void ConfigurationTask::finish(int error)
{
    // The receiver may destroy this object.
    const Done done = std::move(m_done);
    const ndcp_device record = m_record;
    done(error, record);
}

} // namespace ndcp
