#include "camsim/camsim_process.h"
#include "tests/camsim/peer.h"

#include <gtest/gtest.h>

using namespace camsim::test;
using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

namespace {

/// One camera with a small stream, and a client that plays it.
class Faults : public testing::Test
{
protected:
    Faults() { EXPECT_TRUE(m_client.play() && m_client.receivesData(5'000)); }

    RawRtsp connect(const std::string &password = "camsim") const
    {
        const SimulatedCamera &camera = m_camsim.camera();
        return {camera.address, camera.rtspPort, path, "admin", password};
    }
    std::string describe(RawRtsp client) const
    {
        return client.connection().isConnected() ? client.ask("DESCRIBE") : "";
    }
    std::string url() const
    {
        return "'" + m_camsim.camera().urlWithLogin(m_camsim.camera().subUrl) + "'";
    }

    static constexpr const char *path = "/live/1/h264.sdp";
    CamsimProcess m_camsim{{"--sub-size", "320x180"}};
    RawRtsp m_client = connect();
};

} // namespace

TEST_F(Faults, UnknownCommandsAndWrongArgumentsAreRefused)
{
    EXPECT_TRUE(m_camsim.control("0 dance").starts_with("ERR"));
    EXPECT_TRUE(m_camsim.control("7 drop").starts_with("ERR"));
    EXPECT_TRUE(m_camsim.control("0 slow many").starts_with("ERR"));
    EXPECT_TRUE(m_camsim.control("0 slow").starts_with("ERR"));
    EXPECT_TRUE(m_camsim.control("0 resize 3x3").starts_with("ERR"));
    EXPECT_TRUE(m_camsim.control("").starts_with("ERR"));
    EXPECT_TRUE(m_camsim.control("help").starts_with("OK"));
    EXPECT_TRUE(m_client.receivesData(1'000));
}

TEST_F(Faults, DropClosesTheConnection)
{
    EXPECT_TRUE(m_camsim.tell(0, "drop"));
    m_client.connection().readUntil([](const std::string &) { return false; });
    EXPECT_TRUE(m_client.connection().isClosed());
    EXPECT_TRUE(describe(connect()).starts_with("RTSP/1.0 200"));
}

TEST_F(Faults, APacketMayStopInItsMiddle)
{
    EXPECT_TRUE(m_camsim.tell(0, "half-packet close"));
    m_client.connection().readUntil([](const std::string &) { return false; });
    EXPECT_TRUE(m_client.connection().isClosed());

    RawRtsp client = connect();
    ASSERT_TRUE(client.play() && client.receivesData(5'000));
    EXPECT_TRUE(m_camsim.tell(0, "half-packet"));
    // The packets that come after it, of the picture and of the sound, are not sent on.
    client.connection().readUntil([](const std::string &) { return false; },
                                  std::chrono::milliseconds(500));
    client.connection().forget();
    RawRtsp other = connect();
    ASSERT_TRUE(other.play());
    EXPECT_TRUE(other.receivesData(5'000));
    client.connection().readUntil([](const std::string &) { return true; });
    EXPECT_EQ(client.connection().received(), "");
    EXPECT_FALSE(client.connection().isClosed());
}

TEST_F(Faults, FreezeSendsNothingAndThawGoesOn)
{
    EXPECT_TRUE(m_camsim.tell(0, "freeze"));
    // What was on its way arrives, then nothing more.
    EXPECT_TRUE(eventually([&] {
        m_client.connection().forget();
        m_client.connection().readUntil([](const std::string &all) { return !all.empty(); },
                                        std::chrono::seconds(1));
        return m_client.connection().received().empty();
    }));
    EXPECT_FALSE(m_client.connection().isClosed());
    EXPECT_TRUE(m_camsim.tell(0, "thaw"));
    EXPECT_TRUE(m_client.receivesData(5'000));
}

TEST_F(Faults, ANewPasswordIsAskedForOnAConnectionThatIsOpen)
{
    RawRtsp probe = connect();
    EXPECT_TRUE(probe.ask("DESCRIBE").starts_with("RTSP/1.0 200"));
    EXPECT_TRUE(m_camsim.tell(0, "password other"));
    EXPECT_TRUE(probe.ask("DESCRIBE").starts_with("RTSP/1.0 401"));
    EXPECT_TRUE(describe(connect("other")).starts_with("RTSP/1.0 200"));
    EXPECT_TRUE(m_client.receivesData(5'000)); // what plays continues
}

TEST_F(Faults, HalfAnAnswerStopsInTheMiddleOfAWord)
{
    RawRtsp probe = connect();
    EXPECT_TRUE(m_camsim.tell(0, "half-answer close"));
    EXPECT_TRUE(probe.ask("DESCRIBE").empty());
    EXPECT_TRUE(probe.connection().isClosed());
    const std::string &got = probe.connection().received();
    EXPECT_TRUE(got.starts_with("RTSP/1.0 200")) << got;
    EXPECT_TRUE(got.ends_with("\r\nCS")) << got;
    EXPECT_TRUE(describe(connect()).starts_with("RTSP/1.0 200")); // one answer only
}

TEST_F(Faults, GarbageReplacesThePictureAndNotTheHeaders)
{
    EXPECT_TRUE(m_camsim.tell(0, "garbage"));
    EXPECT_TRUE(m_client.receivesData(20'000));
    const Outcome outcome = run("ffmpeg -v error -rtsp_transport tcp -analyzeduration 1000000 -i " +
                                url() + " -t 2 -an -f framehash -");
    // Random bytes may happen to look like a picture; 30 pictures in 2 s would be the camera's.
    EXPECT_LT(outcome.linesStartingWith("0, "), 10) << outcome.output;
    EXPECT_TRUE(m_camsim.tell(0, "garbage off"));
    EXPECT_EQ(run("ffmpeg -v error -rtsp_transport tcp -i " + url() + " -frames:v 5 -an -f null -")
                  .exitCode,
              0);
}

TEST_F(Faults, SlowDelaysAnswers)
{
    EXPECT_TRUE(m_camsim.tell(0, "slow 700"));
    RawRtsp probe = connect();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(probe.ask("OPTIONS").starts_with("RTSP/1.0 200"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(700));
    EXPECT_TRUE(m_client.receivesData(5'000));
}

TEST_F(Faults, LossTakesPackets)
{
    EXPECT_TRUE(m_camsim.tell(0, "loss 40"));
    m_client.connection().forget();
    EXPECT_TRUE(m_client.receivesData(40'000));
    const std::string &data = m_client.connection().received();
    // The sequence numbers of the video packets have gaps.
    int last = -1;
    int gaps = 0;
    for (std::size_t at = data.find("$\0", 0, 2); at + 16 < data.size();) {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(data[at + i]); };
        if (byte(0) != '$')
            break;
        if (byte(1) == 0) {
            const int sequence = byte(6) << 8 | byte(7);
            gaps += last >= 0 && sequence != ((last + 1) & 0xFFFF) ? 1 : 0;
            last = sequence;
        }
        at += 4 + (byte(2) << 8 | byte(3));
    }
    EXPECT_GT(gaps, 0);
}

TEST_F(Faults, ADescriptionCanBeHuge)
{
    EXPECT_TRUE(m_camsim.tell(0, "huge-sdp"));
    const std::string answer = describe(connect());
    EXPECT_GT(answer.size(), 1U << 20);
    EXPECT_TRUE(answer.starts_with("RTSP/1.0 200"));
}

TEST_F(Faults, AStreamCanBeWithoutVideo)
{
    EXPECT_TRUE(m_camsim.tell(0, "no-video"));
    const std::string answer = describe(connect());
    EXPECT_EQ(answer.find("m=video"), std::string::npos) << answer;
    EXPECT_NE(answer.find("m=audio"), std::string::npos) << answer;
    EXPECT_TRUE(m_camsim.tell(0, "no-video off"));
    EXPECT_NE(describe(connect()).find("m=video"), std::string::npos);
}

TEST_F(Faults, TheSizeChangesInTheMiddleOfTheStream)
{
    EXPECT_TRUE(m_camsim.tell(0, "resize 640x360 sub"));
    EXPECT_TRUE(m_client.receivesData(20'000));
    const Outcome outcome = run("ffprobe -v error -rtsp_transport tcp -show_entries "
                                "stream=width,height -of default=nw=1 " +
                                url());
    EXPECT_TRUE(outcome.has("width=640\nheight=360")) << outcome.output;
}

TEST_F(Faults, KeyFramesCanBeFarApart)
{
    EXPECT_TRUE(m_camsim.tell(0, "key-interval 600"));
    const std::string probe = "ffprobe -v error -rtsp_transport tcp -select_streams v "
                              "-read_intervals '%+4' -show_entries packet=flags -of csv=p=0 ";
    const Outcome outcome = run(probe + url());
    // The client that plays already has had the key frame of the new encoder, or this one has it.
    const auto first = outcome.output.find('K');
    EXPECT_TRUE(first == std::string::npos ||
                outcome.output.find('K', first + 1) == std::string::npos)
        << outcome.output;
    EXPECT_GT(outcome.output.size(), 60U);
}

TEST_F(Faults, RefusedConnectionsAndThenListening)
{
    EXPECT_TRUE(m_camsim.tell(0, "refuse"));
    EXPECT_FALSE(connect().connection().isConnected());
    EXPECT_TRUE(m_client.receivesData(5'000)); // what plays continues
    EXPECT_TRUE(m_camsim.tell(0, "listen"));
    EXPECT_TRUE(describe(connect()).starts_with("RTSP/1.0 200"));
}

TEST_F(Faults, ARebootTakesTheCameraAwayAndBringsItBack)
{
    EXPECT_TRUE(m_camsim.tell(0, "reboot"));
    m_client.connection().readUntil([](const std::string &) { return false; });
    EXPECT_TRUE(m_client.connection().isClosed());
    EXPECT_TRUE(eventually([&] { return connect().connection().isConnected(); }));
    EXPECT_TRUE(describe(connect()).starts_with("RTSP/1.0 200"));
}

TEST_F(Faults, TheCameraMovesToAnotherAddress)
{
    EXPECT_TRUE(m_camsim.tell(0, "address 127.0.0.77"));
    EXPECT_FALSE(connect().connection().isConnected());
    RawRtsp moved("127.0.0.77", m_camsim.camera().rtspPort, path, "admin", "camsim");
    EXPECT_TRUE(moved.ask("DESCRIBE").starts_with("RTSP/1.0 200"));
    EXPECT_TRUE(m_camsim.control("0 address 203.0.113.9").starts_with("ERR"));
    EXPECT_EQ(m_camsim.status()["address"], "127.0.0.77");
}

TEST(Sessions, OneWithoutRequestsEndsAsItWasTold)
{
    const CamsimProcess camsim({"--session-timeout", "2", "--canned"});
    const SimulatedCamera &camera = camsim.camera();
    RawRtsp client(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                   camera.password);
    ASSERT_TRUE(client.play());
    RawRtsp speaker(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                    camera.password);
    EXPECT_NE(speaker.ask("DESCRIBE").find("a=control:stream=0"), std::string::npos);
    EXPECT_NE(
        speaker.ask("SETUP", "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n", "/stream=0")
            .find(";timeout=2"),
        std::string::npos);
    client.connection().readUntil([](const std::string &) { return false; });
    EXPECT_TRUE(client.connection().isClosed());
    EXPECT_TRUE(speaker.ask("OPTIONS").starts_with("RTSP/1.0 200"));
}

TEST(Process, EndsWithItsParentAndFreesItsPorts)
{
    int port = 0;
    {
        const CamsimProcess camsim({"--count", "3"});
        port = camsim.camera(2).rtspPort;
        EXPECT_TRUE(RawConnection("127.0.0.1", port).isConnected());
    }
    EXPECT_FALSE(RawConnection("127.0.0.1", port).isConnected());
}

TEST(Process, TheSameSeedGivesTheSameCameras)
{
    const CamsimProcess first({"--seed", "house", "--count", "2", "--name", "Door"});
    const CamsimProcess second({"--seed", "house", "--count", "2"});
    const CamsimProcess third({"--seed", "garden", "--uid", "my-own-uid"});
    EXPECT_EQ(first.camera(0).uid, second.camera(0).uid);
    EXPECT_EQ(first.camera(1).uid, second.camera(1).uid);
    EXPECT_NE(first.camera(0).uid, first.camera(1).uid);
    EXPECT_EQ(first.camera(0).uid.size(), 36U);
    EXPECT_EQ(first.camera(0).name, "Door");
    EXPECT_EQ(first.camera(1).name, "Camera 2");
    EXPECT_EQ(third.camera().uid, "my-own-uid");
}

TEST(Process, HelpAndWrongOptions)
{
    const Outcome help = run(CAMSIM_PATH " --help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.has("--count"));
    const Outcome wrong = run(CAMSIM_PATH " --count many");
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_TRUE(wrong.has("--count"));
    EXPECT_EQ(run(CAMSIM_PATH " --colour red").exitCode, 2);
    EXPECT_EQ(run(CAMSIM_PATH " --count").exitCode, 2);
}
