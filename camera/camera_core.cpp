#include "camera/camera_core.h"

#include "camera/command_channel.h"
#include "camera/developer_check.h"
#include "camera/library_text.h"
#include "camera/session_registry.h"
#include "camera/wait_events.h"
#include "settings/camera_record.h"

#include <QLoggingCategory>
#include <QPointer>

#include <vector>

namespace {

Q_LOGGING_CATEGORY(lcCamera, "zelvaro.camera")

constexpr int reprobeInterval = 3000; // ms
constexpr int waitStep = 100;         // ms
constexpr int defaultWidth = 640;
constexpr int defaultHeight = 480;

/// Of the checks.
constexpr char source[] = "Camera";

QByteArray libraryText(const QString &text)
{
    return zelvaro::libraryText(text, "cammgr_takes_utf8");
}

} // namespace

CCameraCore::CCameraCore(QWidget *parent) : QWidget(parent)
{
    m_reprobe.setSingleShot(true);
    m_reprobe.setInterval(reprobeInterval);
    connect(&m_reprobe, &QTimer::timeout, this, &CCameraCore::slotCameraTickAlive);
    zelvaro::SessionRegistry::enter(this);
}

CCameraCore::~CCameraCore()
{
    if (m_pRtspPlayer)
        delete_player();
    zelvaro::SessionRegistry::leave(this);
}

int CCameraCore::set_info(CameraRecord *record)
{
    m_type = record->type;
    m_hostname = record->hostname;
    m_username = record->username;
    m_password = record->password;
    m_name = record->name;
    m_streamPath = record->streamPath;
    m_record = record;
    return 0;
}

int CCameraCore::create()
{
    const bool fresh = ZELVARO_CHECK(!m_pRtspPlayer, source);
    ZELVARO_CHECK(!cam_to_stop, source);
    ZELVARO_CHECK(!cam_started, source);
    ZELVARO_CHECK(!cam_to_delete, source);
    ZELVARO_CHECK(cam_status == CAMERA_STATE_DISCONNECTED, source);
    ZELVARO_CHECK(cam_status == old_cam_status, source);
    // A second player would take the place of the first, which nobody could stop any more.
    if (!fresh)
        return -1;
    m_pRtspPlayer =
        RtspPlayer_Create(libraryText(m_hostname).constData(), libraryText(m_username).constData(),
                          libraryText(m_password).constData(), &CCameraCore::playerCallback, this);
    if (!m_pRtspPlayer)
        return -1;
    connect(this, &CCameraCore::signalCameraEvent, this, &CCameraCore::slotCameraEvent,
            Qt::QueuedConnection);
    tick_alive();
    return 0;
}

void CCameraCore::tick_alive()
{
    if (!m_pRtspPlayer || cam_started || cam_to_stop)
        return;
    cam_started = 1;
    // A probe that the library does not take is never answered: it has failed.
    if (RtspPlayer_TickAlive(m_pRtspPlayer) < 0)
        emit signalCameraEvent(CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_UNREACHABLE, {});
}

void CCameraCore::slotCameraTickAlive()
{
    tick_alive();
}

RtspPlayer *CCameraCore::player() const
{
    ZELVARO_CHECK(m_pRtspPlayer, source);
    return m_pRtspPlayer;
}

int CCameraCore::get_mode() const
{
    return m_pRtspPlayer ? RtspPlayer_GetMode(m_pRtspPlayer) : 1;
}

int CCameraCore::setup_live_stream(int stream, QWidget *surface)
{
    m_streamPath =
        stream == 1 ? QStringLiteral("/live/1/h264.sdp") : QStringLiteral("/live/0/h264.sdp");
    const WId window = surface ? surface->winId() : 0;
    return RtspPlayer_SetupP2PliveStream(player(), m_streamPath.toLatin1().constData(), window);
}

int CCameraCore::play()
{
    RtspPlayer *const current = player();
    // A view's report may have been on its way when the session was stopped.
    return cam_status == CAMERA_STATE_CONNECTED && !cam_to_stop ? RtspPlayer_Play(current) : -1;
}

int CCameraCore::stop_play()
{
    return RtspPlayer_Stop(player());
}

int CCameraCore::is_playing() const
{
    return RtspPlayer_IsPlaying(player());
}

int CCameraCore::stop()
{
    RtspPlayer *const current = player();
    ZELVARO_CHECK(!cam_to_delete, source);
    ZELVARO_CHECK(!cam_to_stop, source);
    cam_to_stop = 1;
    RtspPlayer_Stop_Connecting(current);
    disconnect(this, &CCameraCore::signalStateChanged, nullptr, nullptr);
    disconnect(this, &CCameraCore::signalStateReport, nullptr, nullptr);
    m_reprobe.stop();
    return RtspPlayer_Stop(current);
}

void CCameraCore::wait_stopped()
{
    const QPointer<CCameraCore> self(this);
    while (self && (cam_started || is_playing())) {
        RtspPlayer_Stop_Connecting(player());
        RtspPlayer_Stop(player());
        zelvaro::waitEvents(waitStep);
    }
}

void CCameraCore::delete_sync()
{
    RtspPlayer *const current = player();
    checkStopped();
    RtspPlayer_DeleteSync(current);
    m_pRtspPlayer = nullptr;
    forgetPlayer();
}

void CCameraCore::delete_player()
{
    RtspPlayer *const current = player();
    checkStopped();
    cam_to_delete = 1;
    if (RtspPlayer_Delete(current) < 0) {
        // Nobody will answer.
        RtspPlayer_DeleteSync(current);
        m_pRtspPlayer = nullptr;
        cam_to_delete = 0;
    }
    while (cam_to_delete)
        zelvaro::waitEvents(waitStep);
    ZELVARO_CHECK(!m_pRtspPlayer, source);
    forgetPlayer();
}

void CCameraCore::checkStopped() const
{
    ZELVARO_CHECK(!cam_started, source);
    ZELVARO_CHECK(cam_to_stop, source);
    ZELVARO_CHECK(!cam_to_delete, source);
    ZELVARO_CHECK(!is_playing(), source);
}

void CCameraCore::forgetPlayer()
{
    disconnect(this, &CCameraCore::signalCameraEvent, this, &CCameraCore::slotCameraEvent);
    old_cam_status = cam_status = CAMERA_STATE_DISCONNECTED;
}

void CCameraCore::restart()
{
    ZELVARO_CHECK(false, source);
}

int CCameraCore::audio_upload_play()
{
    return AudioUpload_Play(player());
}

int CCameraCore::audio_upload_stop()
{
    return AudioUpload_Stop(player());
}

int CCameraCore::audio_upload_is_playing() const
{
    return AudioUpload_IsPlaying(player());
}

bool CCameraCore::has_video() const
{
    return RtspPlayer_HasVideoStream(player()) != 0;
}

bool CCameraCore::has_audio() const
{
    return RtspPlayer_HasAudioStream(player()) != 0;
}

int CCameraCore::set_volume(int volume)
{
    return RtspPlayer_SetVolume(player(), volume);
}

int CCameraCore::snapshot(const QString &path)
{
    return RtspPlayer_Snapshot(player(), libraryText(path).constData());
}

int CCameraCore::begin_writing(const QString &path, int limit)
{
    return RtspPlayer_BeginWriting(player(), libraryText(path).constData(), limit);
}

int CCameraCore::end_writing()
{
    return RtspPlayer_EndWriting(player());
}

int CCameraCore::is_writing() const
{
    return RtspPlayer_IsWriting(player());
}

bool CCameraCore::isWritingHeldUp() const
{
    return is_writing() == CAMMGR_WRITING_WAITS;
}

int CCameraCore::get_frame_rate() const
{
    return RtspPlayer_GetVideoFrameRate(player());
}

int CCameraCore::get_bit_rate() const
{
    return RtspPlayer_GetBitRate(player());
}

int CCameraCore::get_video_width() const
{
    const int width = RtspPlayer_GetVideoWidth(player());
    return width < 1 ? defaultWidth : width;
}

int CCameraCore::get_video_height() const
{
    const int height = RtspPlayer_GetVideoHeight(player());
    return height < 1 ? defaultHeight : height;
}

zelvaro::CameraReason CCameraCore::reason() const
{
    return m_pRtspPlayer ? zelvaro::OptionalFunctions::instance().reason(m_pRtspPlayer)
                         : zelvaro::CameraReason();
}

bool CCameraCore::canFetchStill()
{
    return zelvaro::OptionalFunctions::instance().canFetchStill();
}

int CCameraCore::fetchStill(const QString &path)
{
    return zelvaro::OptionalFunctions::instance().fetchStill(player(), libraryText(path));
}

int CCameraCore::trustKey()
{
    return zelvaro::OptionalFunctions::instance().trustKey(player());
}

std::optional<RtspPlayerFigures> CCameraCore::figures() const
{
    return m_pRtspPlayer ? zelvaro::OptionalFunctions::instance().figures(m_pRtspPlayer)
                         : std::nullopt;
}

int CCameraCore::issue_conf_commands(const QStringList &requests)
{
    const int cnt = requests.length();
    ZELVARO_CHECK(cnt > 0, source);
    QList<QByteArray> bytes;
    std::vector<const char *> texts;
    for (const QString &request : requests) {
        bytes << request.toUtf8();
        texts.push_back(bytes.last().constData());
    }
    const int result = RtspPlayer_Issue_P2PConf_URLCMDs(player(), texts.data(), cnt);
    if (result < 0) {
        // No reply will come, and a caller may be waiting for the end of the batch.
        const auto fail = [this, cnt] { handleReplies(cnt, QVector<QString>(cnt).toList()); };
        QMetaObject::invokeMethod(this, fail, Qt::QueuedConnection);
    }
    return result;
}

void CCameraCore::playerCallback(int message, int nErrORcnt, void *context, char **strings)
{
    QStringList result;
    if (strings) {
        ZELVARO_CHECK(nErrORcnt > 0, source);
        for (int i = 0; i < nErrORcnt; ++i)
            result << QString::fromUtf8(strings[i]);
    }
    zelvaro::SessionRegistry::withSession(context, [&](CCameraCore *session) {
        emit session->signalCameraEvent(message, nErrORcnt, result);
    });
}

void CCameraCore::slotCameraEvent(int nMsg, int nErrORcnt, const QStringList &result)
{
    ZELVARO_CHECK(m_pRtspPlayer, source);
    switch (nMsg) {
    case CAMMGR_MSG_PROBE_OK:
    case CAMMGR_MSG_PROBE_FAILED:
        handleProbeResult(nMsg, nErrORcnt);
        break;
    case CAMMGR_MSG_DELETED:
        handleDeleted();
        break;
    case CAMMGR_MSG_COMMAND_REPLIES:
        handleReplies(nErrORcnt, result);
        break;
    case CAMMGR_MSG_STILL:
        emit signalStillFetched(nErrORcnt >= 0);
        break;
    default:
        ZELVARO_CHECK(false, source);
    }
}

void CCameraCore::handleProbeResult(int message, int error)
{
    ZELVARO_CHECK(cam_started, source);
    cam_started = 0;
    if (cam_to_stop)
        return;
    // A receiver may destroy the session.
    const QPointer<CCameraCore> self(this);
    if (message == CAMMGR_MSG_PROBE_OK) {
        changeState(CAMERA_STATE_CONNECTED, CAMERA_CODE_CONNECTED);
    } else {
        changeState(CAMERA_STATE_DISCONNECTED,
                    error == CAMMGR_ERROR_REFUSED ? CAMERA_CODE_REFUSED : CAMERA_CODE_FAILED);
    }
    if (self)
        m_reprobe.start();
}

void CCameraCore::changeState(int status, int code)
{
    const QPointer<CCameraCore> self(this);
    if (status != cam_status || code != m_stateCode) {
        old_cam_status = cam_status;
        cam_status = status;
        m_stateCode = code;
        emit signalStateChanged();
    }
    if (self)
        emit signalStateReport();
}

void CCameraCore::handleDeleted()
{
    ZELVARO_CHECK(cam_to_delete, source);
    ZELVARO_CHECK(cam_to_stop, source);
    ZELVARO_CHECK(cam_started == 0, source);
    m_pRtspPlayer = nullptr;
    cam_to_delete = 0;
}

void CCameraCore::handleReplies(int nErrORcnt, const QStringList &result)
{
    ZELVARO_CHECK(nErrORcnt == result.length(), source);
    m_commandCodes.clear();
    m_commandKeys.clear();
    m_commandValues.clear();
    for (const QString &text : result) {
        const zelvaro::CommandReply reply = zelvaro::parse_reply(text);
        m_commandCodes << reply.code;
        m_commandKeys << reply.keys;
        m_commandValues << reply.values;
    }
    qCDebug(lcCamera) << m_commandCodes << m_commandKeys << m_commandValues;
    emit signalP2PConfFinished();
}
