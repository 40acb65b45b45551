#pragma once

#include "camera/optional_functions.h"
#include "platform/cammgr/cammgr.h"

#include <QList>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <optional>

struct CameraRecord;

/// State of a session.
enum CameraState
{
    CAMERA_STATE_CONNECTED = 1,   ///< the last probe succeeded; play is allowed
    CAMERA_STATE_DISCONNECTED = 2 ///< at first, after a failed probe and after delete
};

/// Detail of the state.
enum CameraStateCode
{
    CAMERA_CODE_CONNECTED = 0,
    CAMERA_CODE_FAILED = -255, ///< no usable answer
    CAMERA_CODE_REFUSED = -256 ///< the camera refused the user name or password
};

/// One session with one camera: keeps it connected by probes 3 s apart, gives its live stream to
/// a widget, takes snapshots, records, talks back and carries command requests. A widget only to
/// carry signals and slots; never shown.
///
/// Life: set_info, create, (setup_live_stream, play, stop_play)..., stop, wait_stopped, then
/// delete_sync or the destructor. A stopped session is not started again.
///
/// All members belong to the GUI thread. The library's callback, on a thread of the library, only
/// emits signalCameraEvent. Operations give the library's result: negative means failure.
class CCameraCore : public QWidget
{
    Q_OBJECT

public:
    explicit CCameraCore(QWidget *parent = nullptr);
    /// Deletes the player first when there is one; that waits in nested event loops.
    ~CCameraCore() override;

    /// Copies the record's fields and keeps the pointer, which must outlive the session's use.
    int set_info(CameraRecord *record);
    CameraRecord *get_info() const { return m_record; }

    int get_state() const { return cam_status; }
    int get_state_code() const { return m_stateCode; }
    const QString &hostname() const { return m_hostname; }
    const QString &name() const { return m_name; }
    const QString &stream_path() const { return m_streamPath; }
    bool has_player() const { return m_pRtspPlayer != nullptr; }
    bool is_stopped() const { return cam_to_stop != 0; }

    /// Creates the player and sends the first probe. -1 when the library returns none, or when
    /// there is one already, which nobody could stop any more.
    int create();
    /// Sends a probe unless one is outstanding, the session is stopped or there is no player. One
    /// that the library refuses is reported as failed.
    void tick_alive();

    /// Stream for a large picture: 0 main, 1 sub; 1 without a player.
    int get_mode() const;
    /// Stream 1 is the sub stream, any other number the main stream.
    int setup_live_stream(int stream, QWidget *surface);
    /// Does nothing and returns -1 unless connected and not stopped; callers try again on the next
    /// state report.
    int play();
    int stop_play();
    /// Non-zero while a stream plays.
    int is_playing() const;

    /// Ends the session's activity and cuts off its state signals.
    int stop();
    /// Waits in nested event loops, without user input, until no probe and no stream is left.
    void wait_stopped();
    /// Deletes the stopped player at once.
    void delete_sync();
    /// Deletes the stopped player and waits for the library's answer in nested event loops.
    void delete_player();
    /// A stopped session is never started again: this only reports the mistake to developers.
    void restart();

    int audio_upload_play();
    int audio_upload_stop();
    int audio_upload_is_playing() const;

    bool has_video() const;
    bool has_audio() const;
    /// 0 to 200; 100 is the level of the source.
    int set_volume(int volume);

    int snapshot(const QString &path);
    /// limit in bytes for each clip, 0 for none.
    int begin_writing(const QString &path, int limit);
    int end_writing();
    /// Non-zero while recording.
    int is_writing() const;
    /// Whether a recording runs and nothing is being written, as on a full disk; only our library
    /// tells.
    bool isWritingHeldUp() const;

    int get_frame_rate() const;   ///< frames per second
    int get_bit_rate() const;     ///< bits per second
    int get_video_width() const;  ///< pixels; 640 while unknown
    int get_video_height() const; ///< pixels; 480 while unknown

    /// Why the camera is not shown now; CAMMGR_REASON_NONE also where the library cannot tell.
    zelvaro::CameraReason reason() const;
    /// Whether the library can fetch a still picture without playing.
    static bool canFetchStill();
    /// Fetches one into path, whose folder exists; signalStillFetched tells the end within 15 s.
    /// Negative when none was asked for: one is out, or the library cannot.
    int fetchStill(const QString &path);
    /// Trusts the TLS key that the camera shows now (CAMMGR_REASON_KEY_CHANGED).
    int trustKey();
    /// nullopt when nothing was played, or the library cannot tell.
    std::optional<RtspPlayerFigures> figures() const;

    /// Sends one batch of requests; signalP2PConfFinished reports that the results can be read.
    /// Also when the library does not take the batch: then every command has failed. One at a time.
    int issue_conf_commands(const QStringList &requests);
    /// Of the last batch: for each command 0 or -1, and the names and values that it answered.
    const QList<int> &command_codes() const { return m_commandCodes; }
    const QList<QStringList> &command_keys() const { return m_commandKeys; }
    const QList<QStringList> &command_values() const { return m_commandValues; }

signals:
    /// The state or its code has changed.
    void signalStateChanged();
    /// A probe has been answered: the clock of the live views.
    void signalStateReport();
    /// A message of the library, emitted on its thread.
    void signalCameraEvent(int Msg, int ErrorCode, QStringList result);
    /// A still picture that was to be fetched is written, or is not.
    void signalStillFetched(bool written);
    /// The results of a command batch are stored.
    void signalP2PConfFinished();

public slots:
    void slotCameraEvent(int nMsg, int nErrORcnt, const QStringList &result);
    void slotCameraTickAlive();

private:
    static void playerCallback(int message, int nErrORcnt, void *context, char **strings);
    /// The player, after the check that there is one.
    RtspPlayer *player() const;
    void handleProbeResult(int message, int error);
    void handleDeleted();
    void handleReplies(int nErrORcnt, const QStringList &result);
    void changeState(int status, int code);
    /// Checks that the player may be deleted.
    void checkStopped() const;
    void forgetPlayer();

    RtspPlayer *m_pRtspPlayer = nullptr;
    qint32 old_cam_status = CAMERA_STATE_DISCONNECTED;
    qint32 cam_status = CAMERA_STATE_DISCONNECTED;
    qint32 m_stateCode = CAMERA_CODE_FAILED;
    qint32 cam_started = 0;   ///< a probe is outstanding in the library
    qint32 cam_to_stop = 0;   ///< stopped: no more probes, results are dropped
    qint32 cam_to_delete = 0; ///< an asynchronous delete is outstanding
    qint32 m_type = 0;
    QString m_hostname;
    QString m_username;
    QString m_password;
    QString m_name;
    QString m_streamPath;
    QList<int> m_commandCodes;
    QList<QStringList> m_commandKeys;
    QList<QStringList> m_commandValues;
    CameraRecord *m_record = nullptr;
    QTimer m_reprobe{this};
};
