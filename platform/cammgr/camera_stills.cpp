#include "platform/cammgr/camera_session.h"

// The still pictures of a camera session.

namespace cammgr {
namespace {

/// The caller is promised 15 s.
constexpr std::chrono::milliseconds stillLimit = std::chrono::seconds(14);

} // namespace

void CameraSession::fetchStill(const std::string &path)
{
    m_still->start(path, stillLimit, [this](bool written) {
        m_resolver->cancelSnapshot();
        m_stillOut = false;
        report(CAMMGR_MSG_STILL, written ? 0 : -1);
    });
    if (auto frames = m_control.currentFrames(); !frames.empty()) {
        m_still->decode(std::move(frames));
        return;
    }
    // Each way to a picture is a login.
    if (m_schedule.remembered() == rtsp::ProbeOutcome::LoginRefused) {
        m_still->giveUp();
        return;
    }
    m_resolver->find([this, number = m_still->number()](bool found) {
        if (number != m_still->number())
            return;
        if (found)
            askForStill();
        else
            m_still->giveUp();
    });
}

/// The camera's own picture costs it less than a stream. A camera whose services refused the login
/// is not asked again.
void CameraSession::askForStill()
{
    const onvif::CameraStreams *known = m_resolver->knownStreams();
    if (known && m_givesSnapshots) {
        askForSnapshot(*known);
    } else if (!known && (!std::exchange(m_hasLearned, true) || m_resolver->isFindingStreams())) {
        m_resolver->findStreams(
            [this, number = m_still->number()](const onvif::CameraStreams *streams) {
                if (streams)
                    m_paths.setProfiles(*streams);
                if (number != m_still->number())
                    return;
                if (streams)
                    askForSnapshot(*streams);
                else
                    receiveStill(StreamPlace::Sub);
            });
    } else {
        receiveStill(StreamPlace::Sub);
    }
}

void CameraSession::askForSnapshot(const onvif::CameraStreams &streams)
{
    m_resolver->fetchSnapshot(
        streams.sub.profileToken,
        [this, number = m_still->number()](onvif::PictureStatus status, std::string jpeg) {
            // What has failed once would only delay the next picture.
            m_givesSnapshots = status == onvif::PictureStatus::Ok;
            if (number != m_still->number())
                return;
            if (status == onvif::PictureStatus::Ok)
                m_still->store(std::move(jpeg));
            else
                receiveStill(StreamPlace::Sub);
        });
}

void CameraSession::receiveStill(StreamPlace place)
{
    // With its sound, if it has one: of two media a well-known server package now and then sends
    // neither when only one is set up.
    const rtsp::StreamRequest stream = request(StreamPaths::path(place));
    m_still->receive(
        stream,
        [this, place] {
            m_resolver->requestKeyFrame(m_paths.profileToken(StreamPaths::path(place)));
        },
        [this, place](const rtsp::StreamFailure &failure) {
            const bool isUnknown =
                failure.end == StreamEnd::NotFound || failure.end == StreamEnd::PathRefused;
            if (failure.end == StreamEnd::Refused)
                m_schedule.record(rtsp::ProbeOutcome::LoginRefused, Clock::now());
            if (isUnknown && place == StreamPlace::Sub)
                receiveStill(StreamPlace::Main);
            else
                m_still->giveUp();
        });
}

} // namespace cammgr
