#include "platform/cammgr/stream_paths.h"

namespace cammgr {

std::string StreamPaths::path(StreamPlace place)
{
    return place == StreamPlace::Main ? "/live/0/h264.sdp" : "/live/1/h264.sdp";
}

std::optional<StreamPlace> StreamPaths::placeOf(const std::string &path)
{
    for (const StreamPlace place : {StreamPlace::Main, StreamPlace::Sub})
        if (path == StreamPaths::path(place))
            return place;
    return std::nullopt;
}

const onvif::CameraStream *StreamPaths::profileOf(StreamPlace place) const
{
    if (!m_profiles)
        return nullptr;
    return place == StreamPlace::Main ? &m_profiles->main : &m_profiles->sub;
}

std::string StreamPaths::url(const base::Endpoint &endpoint, const std::string &wantedPath) const
{
    if (!m_fixedPath.empty() && !m_usesProfiles)
        return base::rtspOrigin(endpoint) + m_fixedPath;
    const std::optional<StreamPlace> place = placeOf(wantedPath);
    if (!place)
        return base::rtspOrigin(endpoint) + wantedPath;
    if (m_usesProfiles)
        return profileOf(*place)->uri;
    if (!m_isMissing[static_cast<int>(*place)])
        return base::rtspOrigin(endpoint) + wantedPath;
    const StreamPlace other = *place == StreamPlace::Main ? StreamPlace::Sub : StreamPlace::Main;
    return base::rtspOrigin(endpoint) + path(other);
}

std::string StreamPaths::profileToken(const std::string &wantedPath) const
{
    if (!m_profiles)
        return {};
    const std::string &shown = m_fixedPath.empty() || m_usesProfiles ? wantedPath : m_fixedPath;
    for (const onvif::CameraStream *stream : {&m_profiles->main, &m_profiles->sub})
        if (base::parseUrl(stream->uri).path == shown)
            return stream->profileToken;
    return profileOf(placeOf(wantedPath).value_or(StreamPlace::Main))->profileToken;
}

bool StreamPaths::markMissing(const std::string &wantedPath)
{
    const std::optional<StreamPlace> place = placeOf(wantedPath);
    if (!place || !m_fixedPath.empty() || m_usesProfiles)
        return false;
    const int index = static_cast<int>(*place);
    if (m_isMissing[index] || m_isMissing[1 - index]) {
        reset();
        return false;
    }
    m_isMissing[index] = true;
    return true;
}

void StreamPaths::reset()
{
    m_usesProfiles = false;
    m_isMissing[0] = m_isMissing[1] = false;
}

} // namespace cammgr
