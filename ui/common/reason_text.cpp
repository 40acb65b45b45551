#include "ui/common/reason_text.h"

#include "camera/camera.h"
#include "ui/common/duration_text.h"

#include <QCoreApplication>

namespace zelvaro {

namespace {

struct Wording
{
    int reason;
    const char *text; ///< %1: the detail
};

constexpr Wording wordings[] = {
    {CAMMGR_REASON_HOST_NOT_FOUND,
     QT_TRANSLATE_NOOP("Reason", "%1 is not found. Is the camera on, and in this network?")},
    {CAMMGR_REASON_NO_ANSWER, QT_TRANSLATE_NOOP("Reason", "No answer from %1. Is the camera on?")},
    {CAMMGR_REASON_CONNECTION_REFUSED,
     QT_TRANSLATE_NOOP("Reason", "%1 takes no connection. Is the port right, and RTSP switched on "
                                 "in the camera?")},
    {CAMMGR_REASON_LOGIN_REFUSED,
     QT_TRANSLATE_NOOP("Reason", "The camera refuses this user name or password. Correct them with "
                                 "\"Modify\".")},
    {CAMMGR_REASON_LOGIN_PAUSED,
     QT_TRANSLATE_NOOP("Reason", "The camera refuses this user name or password. The next try is "
                                 "in %1, so that the camera does not lock the account. Correct "
                                 "them with \"Modify\".")},
    {CAMMGR_REASON_NO_SUCH_PATH,
     QT_TRANSLATE_NOOP("Reason", "The camera does not play %1. Is ONVIF switched on in the "
                                 "camera?")},
    {CAMMGR_REASON_NO_VIDEO,
     QT_TRANSLATE_NOOP("Reason", "The camera offers no picture. Is video switched on in the "
                                 "camera?")},
    {CAMMGR_REASON_CODEC_UNKNOWN,
     QT_TRANSLATE_NOOP("Reason", "The camera sends %1, which cannot be shown. Set it to H.264, "
                                 "H.265 or MJPEG.")},
    {CAMMGR_REASON_STREAM_ENDED,
     QT_TRANSLATE_NOOP("Reason", "%1 has ended the stream. It is started again.")},
    {CAMMGR_REASON_NO_PICTURES,
     QT_TRANSLATE_NOOP("Reason", "No pictures come from %1. The stream is started again.")},
    {CAMMGR_REASON_BROKEN_ANSWER,
     QT_TRANSLATE_NOOP("Reason", "%1 does not answer as a camera. Is the port right?")},
    {CAMMGR_REASON_TLS_FAILED,
     QT_TRANSLATE_NOOP("Reason", "%1 answers, but not over TLS. Is the port right?")},
    {CAMMGR_REASON_KEY_CHANGED,
     QT_TRANSLATE_NOOP("Reason", "%1 shows another TLS key than before: it is another camera, or "
                                 "was reset, or someone pretends to be it. A right click lets you "
                                 "trust the new key.")},
};

QString translated(const char *text)
{
    return QCoreApplication::translate("Reason", text);
}

QString detailText(const CameraReason &reason)
{
    return reason.value == CAMMGR_REASON_LOGIN_PAUSED ? durationText(reason.detail.toLongLong())
                                                      : reason.detail;
}

} // namespace

QString reasonText(const CameraReason &reason)
{
    if (reason.value == CAMMGR_REASON_NONE)
        return {};
    for (const Wording &wording : wordings) {
        if (wording.reason != reason.value)
            continue;
        const QString text = translated(wording.text);
        return text.contains(QLatin1String("%1")) ? text.arg(detailText(reason)) : text;
    }
    return translated(QT_TRANSLATE_NOOP("Reason", "The camera does not answer. Is it on?"));
}

QString reasonText(const CCamera &camera)
{
    const QString text = reasonText(camera.reason());
    if (!text.isEmpty() || camera.get_state() == CAMERA_STATE_CONNECTED)
        return text;
    return camera.get_state_code() == CAMERA_CODE_REFUSED
               ? reasonText({CAMMGR_REASON_LOGIN_REFUSED, {}})
               : QString();
}

} // namespace zelvaro
