#pragma once

#include "platform/cammgr/cammgr.h"

#include <QString>

#include <optional>

namespace zelvaro {

/// Why a camera is not shown.
struct CameraReason
{
    int value = CAMMGR_REASON_NONE; ///< a CAMMGR_REASON_ value
    QString detail;                 ///< the bare fact; see cammgr.h for what each value has

    bool operator==(const CameraReason &) const = default;
};

/// The functions of the camera-manager library that the library of another maker may lack, looked
/// up once. GUI thread.
class OptionalFunctions
{
public:
    using Lookup = void *(*)(const char *name);

    /// Those of the library that the program runs with.
    static const OptionalFunctions &instance();
    explicit OptionalFunctions(Lookup lookup);

    /// Where the library keeps the TLS keys of cameras. 0, or negative when it does not keep them.
    int setKnownKeysFile(const QString &path) const;
    /// Negative where the library cannot.
    int trustKey(RtspPlayer *player) const;
    [[nodiscard]] bool canFetchStill() const { return m_fetchStill; }
    /// Negative where the library cannot, or does not now.
    int fetchStill(RtspPlayer *player, const QByteArray &path) const;
    /// CAMMGR_REASON_NONE where the library cannot tell.
    [[nodiscard]] CameraReason reason(RtspPlayer *player) const;
    /// nullopt where the library cannot tell, or no stream was started.
    [[nodiscard]] std::optional<RtspPlayerFigures> figures(RtspPlayer *player) const;

private:
    decltype(&cammgr_set_known_keys_file) m_setKnownKeysFile;
    decltype(&RtspPlayer_TrustKey) m_trustKey;
    decltype(&RtspPlayer_FetchStill) m_fetchStill;
    decltype(&RtspPlayer_GetReason) m_getReason;
    decltype(&RtspPlayer_GetFigures) m_getFigures;
};

} // namespace zelvaro
