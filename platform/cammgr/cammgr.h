/*
 * cammgr.h - the camera-manager library: one player per camera.
 *
 * A player keeps a session with one camera: it answers keep-alive probes, draws the camera's live
 * stream on a native window, takes snapshots, records, talks back, and carries command requests.
 * A camera maker may ship a library with this interface in the place of ours.
 *
 * Threads: every call may come from any one thread at a time (the client calls from its GUI
 * thread). The callback runs on threads of the library, never inside a call of the same player, and
 * must not call the library. Calls return within 2 ms, except RtspPlayer_Snapshot (as long as one
 * JPEG takes), RtspPlayer_Stop (until nothing draws on the window any more) and
 * RtspPlayer_DeleteSync (until the player is destroyed).
 *
 * Results: 0 or positive for success, negative for failure, where nothing else is said. A call with
 * a handle that is null or was deleted does nothing: it returns a negative number, or 0 where the
 * result is an answer (RtspPlayer_GetMode: 1).
 *
 * Texts are NUL-terminated; the library copies what it keeps. Host names, user names, passwords and
 * file paths are UTF-8 for a library that says so by cammgr_takes_utf8(), and Latin-1 for a library
 * that lacks that function or answers 0; a client looks it up at run time. Stream paths and command
 * requests are ASCII, where credentials inside a request are base64 of UTF-8. Command replies are
 * the bytes of the camera: ASCII keys, and values that are usually UTF-8. This library takes UTF-8;
 * a text that is none counts as empty.
 */
#ifndef ZELVARO_CAMMGR_H
#define ZELVARO_CAMMGR_H

#include <stdint.h>

#if defined(_WIN32)
#define CAMMGR_API
#else
#define CAMMGR_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* C names. NOLINTBEGIN(readability-identifier-naming) */

/* Whether texts are UTF-8: 1. Optional, see above. Any thread. */
CAMMGR_API int cammgr_takes_utf8(void);

/* Opaque: one session with one camera. */
typedef struct RtspPlayer RtspPlayer;

/* First argument of the callback. */
enum
{
    CAMMGR_MSG_PROBE_OK = 0,        /* a probe was answered; count is 0, strings NULL */
    CAMMGR_MSG_PROBE_FAILED = 1,    /* a probe failed; the second argument is the error code:
                                       CAMMGR_ERROR_REFUSED or CAMMGR_ERROR_UNREACHABLE */
    CAMMGR_MSG_DELETED = 2,         /* RtspPlayer_Delete is complete; the handle is invalid */
    CAMMGR_MSG_COMMAND_REPLIES = 3, /* replies of a command batch: count texts, in request order */
    CAMMGR_MSG_STILL = 100 /* answer to RtspPlayer_FetchStill; the second argument is 0 when the
                              picture is written, negative when there is none. Apart from the
                              messages above, which every library sends. */
};

/* Second argument of CAMMGR_MSG_PROBE_FAILED. */
enum
{
    CAMMGR_ERROR_UNREACHABLE = 0, /* no usable answer */
    CAMMGR_ERROR_REFUSED = 1      /* the camera refused the user name or password */
};

/*
 * message: a CAMMGR_MSG_ value. count_or_error: number of strings, or the error code. context: as
 * given to RtspPlayer_Create. strings: count texts that are valid during the call only, or NULL.
 */
typedef void (*RtspPlayerCallback)(int message, int count_or_error, void *context, char **strings);

/*
 * Makes a player. hostname is an address ("192.168.1.20", "cam.lan:8554", "[fe80::1]"), a full
 * rtsp:// or rtsps:// address, or a UID as discovery shows it, which is resolved on the local
 * network, and again whenever the camera does not answer any more. The path of a full address is
 * used for both streams; its user name and password are taken when the other two are empty.
 * The password is sent as a digest, or over TLS. It is sent in clear (Basic) only to a camera that
 * the user named by its address and that has never offered anything better in the life of this
 * player; a device that was found by its UID, which any device can claim, does not get it so.
 * Nothing is sent yet. Returns NULL when no player can be made (no hostname); one whose hostname
 * means nothing is made, and its probes fail.
 */
CAMMGR_API RtspPlayer *RtspPlayer_Create(const char *hostname, const char *username,
                                         const char *password, RtspPlayerCallback callback,
                                         void *context);

/*
 * Asks for one keep-alive probe, answered later by exactly one CAMMGR_MSG_PROBE_ message, also when
 * the player is stopped in between, within 15 s. A probe that is outstanding is not doubled. Asked
 * within 3 s after RtspPlayer_Play, the answer comes when the first picture is on the window, when
 * the order to play is void (RtspPlayer_Stop, another set-up), or 3 s after that order at the
 * latest and then as for any probe: a client that shows a stream when a probe is answered probes
 * once more after RtspPlayer_Play. A change of the picture's size answers nothing by itself; the
 * size is read at the next answer.
 * A stream that plays answers it; so does memory for a while after a refused login and for a host
 * that is silent (up to 15 s, or until the network changes). A camera sees three wrong logins in 30
 * min at most, so that none locks the account, and one more after each
 * RtspPlayer_SetupP2PliveStream, which only a user requests.
 */
CAMMGR_API int RtspPlayer_TickAlive(RtspPlayer *player);

/* Ends an outstanding probe early; it is then answered with CAMMGR_MSG_PROBE_FAILED. */
CAMMGR_API int RtspPlayer_Stop_Connecting(RtspPlayer *player);

/* Which stream suits a large picture: 0 the main stream, of a camera that answered and has one;
 * else 1, the sub stream. */
CAMMGR_API int RtspPlayer_GetMode(RtspPlayer *player);

/*
 * Chooses the stream (path "/live/0/h264.sdp" main, "/live/1/h264.sdp" sub) and the native window
 * that it is drawn on; 0 plays without drawing. The window must live until RtspPlayer_Stop has
 * returned or another window was set up. A stream that plays ends here, with its recording, when
 * the path or the window is another one than before; the next play starts it there. A camera that
 * refuses the path (404, 400, 403, 454, 500 ..., but not for the login) is played from its largest
 * or smallest ONVIF profile; that is remembered.
 */
CAMMGR_API int RtspPlayer_SetupP2PliveStream(RtspPlayer *player, const char *path,
                                             uintptr_t native_window);

/* Starts the stream that was set up; does nothing when it plays or is being started, or while a
 * refused login is not to be tried again. Never waits. This library starts a stream that is lost
 * (closed by the camera, no frame for 5 s, nobody there) again by itself, after 0.2, 0.5, 1, 2 and
 * then each 4 s, until RtspPlayer_Stop or another set-up; not after a refused login. Meanwhile the
 * last picture stays on the window, and a recording waits to go on in its next clip. A host that
 * stays silent is tried when a probe has found it, and each 15 s. */
CAMMGR_API int RtspPlayer_Play(RtspPlayer *player);

/* Ends the stream, its recording and its talk-back; the session continues. Nothing draws on the
 * window any more when it returns. */
CAMMGR_API int RtspPlayer_Stop(RtspPlayer *player);

/* Non-zero from the first picture that was decoded and drawn until the stream is lost, ends or no
 * frame came for 5 s; 0 until the first picture after a stream was lost. On a window that nobody
 * can see (covered, minimised, none), where nothing is decoded, from the first key frame that was
 * received. */
CAMMGR_API int RtspPlayer_IsPlaying(RtspPlayer *player);

/* Asynchronous delete: the handle is invalid from here on, an outstanding probe is still answered,
 * and CAMMGR_MSG_DELETED is the last message. A player that plays is stopped first. */
CAMMGR_API int RtspPlayer_Delete(RtspPlayer *player);

/* Deletes at once; no callback runs during or after the call, nor does an outstanding probe get
 * its answer. A player that plays is stopped first. Negative when called from a callback. */
CAMMGR_API int RtspPlayer_DeleteSync(RtspPlayer *player);

/* Non-zero when the stream that plays has video, audio. */
CAMMGR_API int RtspPlayer_HasVideoStream(RtspPlayer *player);
CAMMGR_API int RtspPlayer_HasAudioStream(RtspPlayer *player);

/* volume 0 (silent) to 200; 100 is the level of the source. Kept for streams started later. */
CAMMGR_API int RtspPlayer_SetVolume(RtspPlayer *player, int volume);

/*
 * Writes the frame on the screen, in full stream resolution, as JPEG. The file is complete (or
 * absent) when the call returns: it is written to a temporary file and renamed. Negative when there
 * is no frame or the file cannot be written.
 */
CAMMGR_API int RtspPlayer_Snapshot(RtspPlayer *player, const char *path);

/*
 * Starts recording to base_path + ".mp4", from the key frame before the call. At limit bytes the
 * clip closes and the next one continues without a lost frame as base_path + "_0002.mp4",
 * "_0003.mp4" and so on, each with its own still (name + ".jpeg"). A recording whose base_path was
 * used before begins at the next number that is free: no clip is written over. A clip that is
 * deleted while it is written or closed does not come back. limit 0: no limit. Negative when no
 * stream plays, a recording runs already, or the folder cannot be written.
 */
CAMMGR_API int RtspPlayer_BeginWriting(RtspPlayer *player, const char *base_path, int limit);

/* Ends the recording; the file is finished in the background. */
CAMMGR_API int RtspPlayer_EndWriting(RtspPlayer *player);

/* Results of RtspPlayer_IsWriting of this library; another one says 0 or any other number. */
enum
{
    CAMMGR_WRITING_NONE =
        0,              /* no recording runs: none was begun, or its begin failed, or it ended */
    CAMMGR_WRITING = 1, /* a clip is open and takes the frames that come */
    CAMMGR_WRITING_WAITS = 2 /* one was begun and nothing is being written: no key frame came yet,
                                the stream is lost, or the disk is full or gone. A new clip begins
                                when that is over, for a disk within 5 s; RtspPlayer_EndWriting ends
                                the wait. */
};

/* Non-zero while a recording runs, from RtspPlayer_BeginWriting to RtspPlayer_EndWriting,
 * RtspPlayer_Stop, another set-up or a refused login: a CAMMGR_WRITING value. */
CAMMGR_API int RtspPlayer_IsWriting(RtspPlayer *player);

/* Over the last second: frames per second, bits per second. */
CAMMGR_API int RtspPlayer_GetVideoFrameRate(RtspPlayer *player);
CAMMGR_API int RtspPlayer_GetBitRate(RtspPlayer *player);

/* Size of the stream in pixels; 0 while unknown. */
CAMMGR_API int RtspPlayer_GetVideoWidth(RtspPlayer *player);
CAMMGR_API int RtspPlayer_GetVideoHeight(RtspPlayer *player);

/* Why a camera is not shown, and what RtspPlayer_GetReason gives as its detail. A client treats a
 * number that it does not know as CAMMGR_REASON_NO_ANSWER without a detail. */
enum
{
    CAMMGR_REASON_NONE = 0,           /* it is shown or can be, or nothing is known yet; empty */
    CAMMGR_REASON_HOST_NOT_FOUND = 1, /* its name has no address, or nobody on the local network
                                         has its UID; the name, the UID or what was given */
    CAMMGR_REASON_NO_ANSWER = 2,      /* "192.168.1.20:554" */
    CAMMGR_REASON_CONNECTION_REFUSED = 3, /* its host answers, the port is closed;
                                             "192.168.1.20:554" */
    CAMMGR_REASON_LOGIN_REFUSED = 4,      /* user name or password; "192.168.1.20:554" */
    CAMMGR_REASON_LOGIN_PAUSED = 5,       /* refused too often: not tried again for the seconds in
                                             the detail, "1740", so that the camera does not lock
                                             the account, which it may have done already */
    CAMMGR_REASON_NO_SUCH_PATH = 6,       /* it does not play what it is asked for;
                                             "/live/0/h264.sdp", then, if it was answered, a space
                                             and the RTSP status: "404" */
    CAMMGR_REASON_NO_VIDEO = 7,           /* it describes no picture; empty */
    CAMMGR_REASON_CODEC_UNKNOWN = 8,  /* its picture cannot be decoded; RTP encoding name: "VP8" */
    CAMMGR_REASON_STREAM_ENDED = 9,   /* it ended a stream that played; "192.168.1.20:554" */
    CAMMGR_REASON_NO_PICTURES = 10,   /* it plays, but for 5 s (at first up to 30 s) nothing came
                                         of which a picture could be made; "192.168.1.20:554" */
    CAMMGR_REASON_BROKEN_ANSWER = 11, /* what it answers is no RTSP or breaks off;
                                         "192.168.1.20:554" */
    CAMMGR_REASON_KEY_CHANGED = 12,   /* over TLS it shows another key than it had, see
                                         RtspPlayer_TrustKey; "192.168.1.20:322" */
    CAMMGR_REASON_TLS_FAILED = 13     /* something answers there, but not over TLS;
                                         "192.168.1.20:322" */
};

/*
 * Optional, as is all that follows: looked up at run time, since a library may lack it. Why the
 * camera is not shown now: a CAMMGR_REASON_ value. Writes the bare fact that belongs to it into
 * detail (size bytes, at least 1), as UTF-8, cut on the border of a character and NUL-terminated;
 * detail may be NULL. The words for the user are the client's. Set by each probe and each stream
 * that fails; that of a stream holds until the next picture or the end of the order to play, that
 * of a probe until the next one is answered.
 */
CAMMGR_API int RtspPlayer_GetReason(RtspPlayer *player, char *detail, int size);

/*
 * Optional. The keys of cameras that are reached by TLS are kept in this file (UTF-8; its folder
 * exists): the first key that a camera shows is remembered, and another one is refused
 * (CAMMGR_REASON_KEY_CHANGED). Without a file they are kept for as long as the process runs. Call
 * it before the first RtspPlayer_Create; it reads the file. Negative when the file is there and
 * cannot be read, which counts as no file.
 */
CAMMGR_API int cammgr_set_known_keys_file(const char *path);

/* Optional. The user trusts the key that the camera shows now: it takes the place of the one that
 * was known, and the next probe is not answered from memory. Does nothing when no key of the camera
 * was refused. */
CAMMGR_API int RtspPlayer_TrustKey(RtspPlayer *player);

/*
 * Optional. Fetches a still picture of the camera without playing it and writes it to path as JPEG,
 * to a temporary file that is renamed: the frame of the stream that plays, else the camera's own
 * picture where its ONVIF services tell the address, else a key frame of the sub stream. Answered
 * later by one CAMMGR_MSG_STILL, within 15 s, unless the player is deleted before. One at a time;
 * negative while one is out. It is a login, so that nothing is fetched while the last one was
 * refused. A client limits how many cameras it asks at the same time.
 */
CAMMGR_API int RtspPlayer_FetchStill(RtspPlayer *player, const char *path);

/* What RtspPlayer_GetFigures tells of the stream that plays. Texts are NUL-terminated ASCII and
 * empty, numbers 0 where nothing else is said and nothing is known. */
typedef struct RtspPlayerFigures
{
    int32_t size;            /* of the structure, bytes; set by the caller */
    int32_t width;           /* pixels */
    int32_t height;          /* pixels */
    int32_t bit_rate;        /* of the picture over the last second, bits per second */
    int32_t jitter;          /* of the packets' arrival (RFC 3550 6.4.1), microseconds */
    int32_t delay;           /* from the arrival of a frame until it is drawn, mean, microseconds */
    int32_t picture_age;     /* since the picture on the window arrived, ms; of a window that nobody
                                can see, the newest frame; -1 when there is none */
    int32_t reserved;        /* 0 */
    int64_t frames_received; /* whole ones */
    int64_t frames_drawn;    /* handed to the window */
    int64_t frames_dropped;  /* left out: damaged by a loss, or too late on a busy machine */
    int64_t packets_received; /* of the picture */
    int64_t packets_lost;     /* of the picture; that never came */
    char codec[16];           /* of the picture: "H264", "H265", "JPEG" */
    char sound_codec[16]; /* "PCMU", "PCMA", "G726", "L16", "AAC", "OPUS"; empty without sound */
    char decoder[32];     /* name of the decoder that draws */
    char transport[16];   /* "TCP", "UDP", "TLS", "HTTP", "HTTPS" */
} RtspPlayerFigures;

/* Optional. Fills the figures as far as figures->size goes, so that later versions may add fields
 * at the end; they count from RtspPlayer_Play, over all reconnections. Negative when figures is
 * NULL or smaller than the first version, or when no stream was started. */
CAMMGR_API int RtspPlayer_GetFigures(RtspPlayer *player, RtspPlayerFigures *figures);

/*
 * Sends count request texts to the camera's HTTP port, in order, and answers later with one
 * CAMMGR_MSG_COMMAND_REPLIES that holds count reply bodies, within 15 s. A request that could not
 * be carried is answered with a failure text, whose first line is not "000 Success". The port is
 * that of the camera's web pages as it reports it by ONVIF, else 80. One batch at a time, of at
 * most 1,000 requests; negative while one is out.
 */
CAMMGR_API int RtspPlayer_Issue_P2PConf_URLCMDs(RtspPlayer *player, const char *const *requests,
                                                int count);

/* Results of AudioUpload_Play, besides 0 and -1. */
enum
{
    CAMMGR_TALK_NO_MICROPHONE = -2, /* this machine has no microphone, or it failed */
    CAMMGR_TALK_NOT_TAKEN = -3,     /* the camera takes no sound, or none of a known kind */
    CAMMGR_TALK_FAILED = -4         /* no connection, or the camera ended it */
};

/* Talk-back: microphone to camera, over the ONVIF back channel. Play never waits; IsPlaying is
 * non-zero from then on until Stop, RtspPlayer_Stop, or a failure, which does not touch the stream.
 * Within 30 s after a failure Play does nothing and says why, a CAMMGR_TALK_ value, so that a
 * client may call again and again; after Stop it tries at once. */
CAMMGR_API int AudioUpload_Play(RtspPlayer *player);
CAMMGR_API int AudioUpload_Stop(RtspPlayer *player);
CAMMGR_API int AudioUpload_IsPlaying(RtspPlayer *player);

/* NOLINTEND(readability-identifier-naming) */

#ifdef __cplusplus
}
#endif

#endif
