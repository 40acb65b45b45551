#include "camera/optional_functions.h"

#include "camera/loaded_symbol.h"

#include <array>

namespace zelvaro {
namespace {

constexpr int longestDetail = 512; // bytes

template <typename Function>
Function find(OptionalFunctions::Lookup lookup, const char *name)
{
    return reinterpret_cast<Function>(lookup(name));
}

} // namespace

const OptionalFunctions &OptionalFunctions::instance()
{
    static const OptionalFunctions functions(&loadedSymbol);
    return functions;
}

OptionalFunctions::OptionalFunctions(Lookup lookup)
    : m_setKnownKeysFile(find<decltype(m_setKnownKeysFile)>(lookup, "cammgr_set_known_keys_file"))
    , m_trustKey(find<decltype(m_trustKey)>(lookup, "RtspPlayer_TrustKey"))
    , m_fetchStill(find<decltype(m_fetchStill)>(lookup, "RtspPlayer_FetchStill"))
    , m_getReason(find<decltype(m_getReason)>(lookup, "RtspPlayer_GetReason"))
    , m_getFigures(find<decltype(m_getFigures)>(lookup, "RtspPlayer_GetFigures"))
{
}

int OptionalFunctions::setKnownKeysFile(const QString &path) const
{
    return m_setKnownKeysFile ? m_setKnownKeysFile(path.toUtf8().constData()) : -1;
}

int OptionalFunctions::trustKey(RtspPlayer *player) const
{
    return m_trustKey ? m_trustKey(player) : -1;
}

int OptionalFunctions::fetchStill(RtspPlayer *player, const QByteArray &path) const
{
    return m_fetchStill ? m_fetchStill(player, path.constData()) : -1;
}

CameraReason OptionalFunctions::reason(RtspPlayer *player) const
{
    CameraReason reason;
    if (!m_getReason)
        return reason;
    std::array<char, longestDetail> detail = {};
    reason.value = m_getReason(player, detail.data(), longestDetail);
    detail.back() = '\0';
    reason.detail = QString::fromUtf8(detail.data());
    return reason;
}

std::optional<RtspPlayerFigures> OptionalFunctions::figures(RtspPlayer *player) const
{
    RtspPlayerFigures figures = {};
    figures.size = sizeof figures;
    if (!m_getFigures || m_getFigures(player, &figures) < 0)
        return std::nullopt;
    return figures;
}

} // namespace zelvaro
