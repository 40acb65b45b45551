#include "platform/cammgr/reason.h"

#include <gtest/gtest.h>

#include <array>

using namespace cammgr;
using namespace std::chrono_literals;
using rtsp::ProbeOutcome;
using rtsp::StreamEnd;

namespace {

const base::CameraAddress stream = base::parseUrl("rtsp://192.168.1.20/live/0/h264.sdp");

void expect(const Reason &reason, int value, const std::string &detail)
{
    EXPECT_EQ(reason.value, value);
    EXPECT_EQ(reason.detail, detail);
}

} // namespace

TEST(Reason, OfProbes)
{
    expect(reasonOf(ProbeOutcome::Answered, stream), CAMMGR_REASON_NONE, "");
    expect(reasonOf(ProbeOutcome::Silent, stream), CAMMGR_REASON_NO_ANSWER, "192.168.1.20:554");
    expect(reasonOf(ProbeOutcome::LoginRefused, stream), CAMMGR_REASON_LOGIN_REFUSED,
           "192.168.1.20:554");
    expect(reasonOf(ProbeOutcome::NotFound, stream), CAMMGR_REASON_NO_SUCH_PATH,
           "/live/0/h264.sdp 404");
    expect(reasonOf(ProbeOutcome::Unusable, stream, 503), CAMMGR_REASON_NO_SUCH_PATH,
           "/live/0/h264.sdp 503");
    expect(reasonOf(ProbeOutcome::Unusable, stream), CAMMGR_REASON_BROKEN_ANSWER,
           "192.168.1.20:554");
    expect(reasonOf(ProbeOutcome::NoSuchHost, base::parseUrl("rtsp://cam.lan/a")),
           CAMMGR_REASON_HOST_NOT_FOUND, "cam.lan");
    expect(reasonOf(ProbeOutcome::KeyChanged, base::parseUrl("rtsps://192.168.1.20/a")),
           CAMMGR_REASON_KEY_CHANGED, "192.168.1.20:322");
    expect(reasonOf(ProbeOutcome::Rejected, base::parseUrl("rtsp://[fe80::1]:8554/a")),
           CAMMGR_REASON_CONNECTION_REFUSED, "[fe80::1]:8554");
}

TEST(Reason, OfStreams)
{
    const auto expectOf = [](const rtsp::StreamFailure &failure, int value, const char *detail) {
        expect(reasonOf(failure, stream), value, detail);
    };
    expectOf({StreamEnd::NoSuchHost}, CAMMGR_REASON_HOST_NOT_FOUND, "192.168.1.20");
    expectOf({StreamEnd::Silent}, CAMMGR_REASON_NO_ANSWER, "192.168.1.20:554");
    expectOf({StreamEnd::Rejected}, CAMMGR_REASON_CONNECTION_REFUSED, "192.168.1.20:554");
    expectOf({StreamEnd::TlsFailed}, CAMMGR_REASON_TLS_FAILED, "192.168.1.20:554");
    expectOf({StreamEnd::KeyChanged}, CAMMGR_REASON_KEY_CHANGED, "192.168.1.20:554");
    expectOf({StreamEnd::Failed}, CAMMGR_REASON_BROKEN_ANSWER, "192.168.1.20:554");
    expectOf({StreamEnd::Refused}, CAMMGR_REASON_LOGIN_REFUSED, "192.168.1.20:554");
    expectOf({StreamEnd::NotFound}, CAMMGR_REASON_NO_SUCH_PATH, "/live/0/h264.sdp 404");
    expectOf({StreamEnd::PathRefused, "", 454}, CAMMGR_REASON_NO_SUCH_PATH, "/live/0/h264.sdp 454");
    expectOf({StreamEnd::PathRefused}, CAMMGR_REASON_NO_SUCH_PATH, "/live/0/h264.sdp");
    expectOf({StreamEnd::Closed}, CAMMGR_REASON_STREAM_ENDED, "192.168.1.20:554");
    expectOf({StreamEnd::Stalled}, CAMMGR_REASON_NO_PICTURES, "192.168.1.20:554");
    expectOf({StreamEnd::NoVideo}, CAMMGR_REASON_NO_VIDEO, "");
    expectOf({StreamEnd::UnknownCodec, "", 0, "VP8"}, CAMMGR_REASON_CODEC_UNKNOWN, "VP8");
}

TEST(Reason, OfAStreamHoldsUntilThePictureComes)
{
    ReasonBoard board;
    expect(board.current(), CAMMGR_REASON_NONE, "");
    board.streamFailed(reasonOf({StreamEnd::NoVideo}, stream));
    board.probeAnswered();
    expect(board.current(), CAMMGR_REASON_NO_VIDEO, "");
    board.pictureShown();
    expect(board.current(), CAMMGR_REASON_NONE, "");
}

TEST(Reason, OfAStreamGoesWithTheOrder)
{
    ReasonBoard board;
    board.streamFailed(reasonOf({StreamEnd::NoVideo}, stream));
    board.orderVoided();
    expect(board.current(), CAMMGR_REASON_NONE, "");
}

TEST(Reason, OfAProbeHoldsUntilOneIsAnswered)
{
    ReasonBoard board;
    board.probeFailed(reasonOf(ProbeOutcome::Silent, stream));
    board.orderVoided();
    expect(board.current(), CAMMGR_REASON_NO_ANSWER, "192.168.1.20:554");
    board.probeAnswered();
    expect(board.current(), CAMMGR_REASON_NONE, "");
}

TEST(Reason, PausedLoginTellsForHowLong)
{
    ReasonBoard board;
    const ReasonBoard::Time now{1000s};
    board.probeFailed(reasonOf(ProbeOutcome::LoginRefused, stream));
    board.setLoginPause(now + 90s);
    expect(board.current(now), CAMMGR_REASON_LOGIN_PAUSED, "90");
    expect(board.current(now + 500ms), CAMMGR_REASON_LOGIN_PAUSED, "90");
    expect(board.current(now + 90s), CAMMGR_REASON_LOGIN_REFUSED, "192.168.1.20:554");
    board.probeFailed(reasonOf(ProbeOutcome::Silent, stream));
    expect(board.current(now), CAMMGR_REASON_NO_ANSWER, "192.168.1.20:554");
}

TEST(Reason, DetailIsCutBetweenCharacters)
{
    std::array<char, 8> room;
    const auto cut = [&](const std::string &text, int size) {
        room.fill('x');
        copyCut(text, room.data(), size);
        return std::string(room.data());
    };
    EXPECT_EQ(cut("VP8", 8), "VP8");
    EXPECT_EQ(cut("VP8", 3), "VP");
    EXPECT_EQ(cut("VP8", 1), "");
    EXPECT_EQ(cut("a\u00e9\u00e9", 5), "a\u00e9");
    EXPECT_EQ(cut("a\u00e9\u00e9", 4), "a\u00e9");
    EXPECT_EQ(cut("\U0001f4f7", 4), "");
    EXPECT_EQ(room[1], 'x');
    copyCut("VP8", nullptr, 8);
    copyCut("VP8", room.data(), 0);
}
