#include "platform/rtsp/session_description.h"

#include <gtest/gtest.h>

namespace rtsp {

namespace {

const std::string session = "v=0\r\no=- 1 1 IN IP4 192.0.2.20\r\ns=Camera\r\nt=0 0\r\n";
const std::string h264 = "m=video 0 RTP/AVP 96\r\na=rtpmap:96 H264/90000\r\n";
const std::string g711 = "m=audio 0 RTP/AVP 0\r\n";

SessionDescription read(const std::string &text)
{
    return parseSessionDescription(text).value_or(SessionDescription());
}

/// The first medium of a description with these lines.
MediaDescription mediumOf(const std::string &lines)
{
    const SessionDescription description = read(session + lines);
    return description.media.empty() ? MediaDescription() : description.media[0];
}

bool isPlayableMedium(const std::string &lines)
{
    return isPlayable(mediumOf(lines));
}

} // namespace

TEST(SessionDescription, ReadsWhatACameraOffers)
{
    const SessionDescription description =
        read(session + "c=IN IP4 0.0.0.0\r\n"
                       "a=control:*\r\n"
                       "a=range:npt=0-\r\n"
                       "m=video 0 RTP/AVP 96\r\n"
                       "b=AS:5000\r\n"
                       "a=recvonly\r\n"
                       "a=x-dimensions:2560,1440\r\n"
                       "a=control:rtsp://192.0.2.20/trackID=1\r\n"
                       "a=rtpmap:96 H264/90000\r\n"
                       "a=fmtp:96 profile-level-id=420029; packetization-mode=1; "
                       "sprop-parameter-sets=Z00AKeKQ,aM48gA==\r\n"
                       "m=audio 49170/2 RTP/AVP 97\r\n"
                       "c=IN IP4 239.1.2.3/127\r\n"
                       "a=range:npt=now-\r\n"
                       "a=control:trackID=2\r\n"
                       "a=rtpmap:97 mpeg4-generic/16000/2\r\n"
                       "a=fmtp:97 mode=AAC-hbr;config=1410;SizeLength=13\r\n");
    EXPECT_EQ(description.control, "*");
    EXPECT_EQ(description.range, "npt=0-");
    ASSERT_EQ(description.media.size(), 2u);

    const MediaDescription &video = description.media[0];
    EXPECT_EQ(video.kind, MediaKind::Video);
    EXPECT_EQ(video.protocol, "RTP/AVP");
    EXPECT_EQ(video.control, "rtsp://192.0.2.20/trackID=1");
    EXPECT_EQ(video.connection, "0.0.0.0");
    EXPECT_EQ(video.range, "npt=0-");
    EXPECT_EQ(video.width, 2560);
    EXPECT_EQ(video.height, 1440);
    EXPECT_FALSE(video.backChannel);
    ASSERT_EQ(video.formats.size(), 1u);
    EXPECT_EQ(video.formats[0].payloadType, 96);
    EXPECT_EQ(video.formats[0].encoding, "H264");
    EXPECT_EQ(video.formats[0].clockRate, 90000);
    ASSERT_TRUE(video.formats[0].parameter("sprop-parameter-sets"));
    EXPECT_EQ(*video.formats[0].parameter("sprop-parameter-sets"), "Z00AKeKQ,aM48gA==");
    EXPECT_EQ(video.formats[0].number("packetization-mode"), 1);
    EXPECT_FALSE(video.formats[0].number("profile-level-idx"));
    EXPECT_FALSE(video.formats[0].number("sprop-parameter-sets"));

    const MediaDescription &audio = description.media[1];
    EXPECT_EQ(audio.kind, MediaKind::Audio);
    EXPECT_EQ(audio.port, 49170);
    EXPECT_EQ(audio.connection, "239.1.2.3");
    EXPECT_EQ(audio.range, "npt=now-");
    EXPECT_EQ(audio.control, "trackID=2");
    ASSERT_EQ(audio.formats.size(), 1u);
    EXPECT_EQ(audio.formats[0].encoding, "MPEG4-GENERIC");
    EXPECT_EQ(audio.formats[0].clockRate, 16000);
    EXPECT_EQ(audio.formats[0].channels, 2);
    EXPECT_EQ(audio.formats[0].number("sizelength"), 13);
    EXPECT_TRUE(isPlayable(audio));
}

TEST(SessionDescription, KnowsStaticPayloadTypesThatAreNotMapped)
{
    for (const char *payload : {"0", "2", "8", "10", "11"})
        EXPECT_TRUE(isPlayableMedium(std::string("m=audio 0 RTP/AVP ") + payload + "\r\n"))
            << payload;
    EXPECT_TRUE(isPlayableMedium("m=video 0 RTP/AVP 26\r\n"));
    for (const char *payload : {"18", "95", "96", "-1", "256", "99999999999"})
        EXPECT_FALSE(isPlayableMedium(std::string("m=audio 0 RTP/AVP ") + payload + "\r\n"))
            << payload;
    const MediaDescription stereo = mediumOf("m=audio 0 RTP/AVP 10\r\n");
    EXPECT_EQ(stereo.formats[0].clockRate, 44100);
    EXPECT_EQ(stereo.formats[0].channels, 2);
}

TEST(SessionDescription, AMapGoesBeforeAStaticType)
{
    const MediaDescription wide = mediumOf("m=audio 0 RTP/AVP 0\na=rtpmap:0 pcmu/16000\n");
    EXPECT_EQ(wide.formats[0].encoding, "PCMU");
    EXPECT_EQ(wide.formats[0].clockRate, 16000);
    const MediaDescription other = mediumOf("m=audio 0 RTP/AVP 10\na=rtpmap:10 OPUS/48000/2\n");
    EXPECT_EQ(other.formats[0].encoding, "OPUS");
    const MediaDescription mono = mediumOf("m=audio 0 RTP/AVP 10\na=rtpmap:10 L16/8000\n");
    EXPECT_EQ(mono.formats[0].channels, 1);
}

TEST(SessionDescription, PlaysEachCodec)
{
    for (const char *map :
         {"H264/90000", "h264/90000", "H264", "H265/90000", "HEVC/90000", "JPEG/90000"})
        EXPECT_TRUE(
            isPlayableMedium(std::string("m=video 0 RTP/AVP 96\na=rtpmap:96 ") + map + "\n"))
            << map;
    for (const char *map :
         {"PCMU/8000", "PCMA/16000/2", "G726-16/8000", "G726-24/8000", "G726-32/8000",
          "G726-40/8000", "AAL2-G726-32/8000", "L16/48000/2", "OPUS/48000/2", "MP4A-LATM/90000"})
        EXPECT_TRUE(
            isPlayableMedium(std::string("m=audio 0 RTP/AVP 96\na=rtpmap:96 ") + map + "\n"))
            << map;
    for (const char *map : {"VP8/90000", "MP4V-ES/90000", "H264X/90000", "/90000", ""})
        EXPECT_FALSE(
            isPlayableMedium(std::string("m=video 0 RTP/AVP 96\na=rtpmap:96 ") + map + "\n"))
            << map;
    EXPECT_FALSE(isPlayableMedium("m=audio 0 RTP/AVP 96\na=rtpmap:96 H264/90000\n"));
    EXPECT_FALSE(isPlayableMedium("m=application 0 RTP/AVP 96\na=rtpmap:96 H264/90000\n"));
    EXPECT_FALSE(isPlayableMedium("m=audio 0 RTP/AVP 96\na=rtpmap:96 PCMU/9999999\n"));
    EXPECT_FALSE(isPlayableMedium("m=audio 0 RTP/AVP 96\na=rtpmap:96 L16/8000/60\n"));
}

TEST(SessionDescription, PlaysAacWhoseConfigurationCanBeKnown)
{
    const auto playable = [](const std::string &map, const std::string &parameters) {
        return isPlayableMedium("m=audio 0 RTP/AVP 97\na=rtpmap:97 " + map + "\na=fmtp:97 " +
                                parameters + "\n");
    };
    EXPECT_TRUE(playable("MPEG4-GENERIC/16000/1", "mode=AAC-hbr;config=1408"));
    EXPECT_TRUE(playable("MPEG4-GENERIC/16000/1", "mode=AAC-hbr;config=zz"));
    EXPECT_TRUE(playable("MPEG4-GENERIC/16000/1", "streamtype=5"));
    EXPECT_TRUE(playable("MPEG4-GENERIC/12345/1", "config=1408"));
    EXPECT_FALSE(playable("MPEG4-GENERIC/12345/1", "config="));
    EXPECT_FALSE(playable("MPEG4-GENERIC/16000/1", "mode=CELP-cbr"));
    EXPECT_FALSE(playable("MPEG4-GENERIC/16000/1", "sizelength=99"));
    EXPECT_TRUE(playable("MP4A-LATM/16000/1", "cpresent=0;config=400028103fc0"));
    EXPECT_TRUE(playable("MP4A-LATM/16000/1", "cpresent=0"));
    EXPECT_FALSE(playable("MP4A-LATM/90000/1", "cpresent=0"));
}

TEST(SessionDescription, TellsTheBackChannel)
{
    const auto backChannels = [](const std::string &text) {
        std::string told;
        for (const MediaDescription &medium : read(session + text).media)
            told += medium.backChannel ? 'b' : '-';
        return told;
    };
    const std::string toCamera = g711 + "a=sendonly\r\n";
    EXPECT_EQ(backChannels(h264 + g711), "--");
    EXPECT_EQ(backChannels(h264 + toCamera), "-b");
    EXPECT_EQ(backChannels(h264 + g711 + "a=recvonly\r\n" + toCamera), "--b");
    EXPECT_EQ(backChannels(h264 + g711 + "a=sendrecv\r\n"), "--");
    // Who marks the video so tells what is sent by the camera.
    EXPECT_EQ(backChannels(h264 + "a=sendonly\r\n" + toCamera), "--");
    EXPECT_EQ(backChannels(h264 + "a=sendonly\r\n" + toCamera + g711 + "a=recvonly\r\n"), "--b");
    EXPECT_EQ(backChannels("a=sendonly\r\n" + h264 + g711), "--");
    EXPECT_FALSE(isPlayableMedium(toCamera));
    EXPECT_TRUE(isPlayableMedium(h264 + "a=sendonly\r\n"));
}

TEST(SessionDescription, FindsTheFormatThatCanBePlayedAmongSeveral)
{
    const MediaDescription medium = mediumOf("m=video 0 RTP/AVP 95 96 x 99999999999\r\n"
                                             "a=rtpmap:95 VP8/90000\r\na=rtpmap:96 h264/90000\r\n");
    ASSERT_TRUE(playableFormat(medium));
    EXPECT_EQ(playableFormat(medium)->payloadType, 96);
}

TEST(SessionDescription, ReadsOtherFormsOfTheSize)
{
    EXPECT_EQ(mediumOf(h264 + "a=framesize:96 1920-1080\r\n").width, 1920);
    EXPECT_EQ(mediumOf(h264 + "a=framesize:96 1920-1080\r\n").height, 1080);
    EXPECT_EQ(mediumOf(h264 + "a=x-dimensions: 1920 , 1080\r\n").height, 1080);
    EXPECT_EQ(mediumOf(h264 + "a=x-dimensions:1920\r\n").width, 0);
    EXPECT_EQ(mediumOf(h264 + "a=x-dimensions:-5,99999999\r\n").width, 0);
}

TEST(SessionDescription, OfferingNothingIsNoError)
{
    EXPECT_TRUE(read(session).media.empty());
    for (const std::string &text :
         {session + "m=video 0 RTP/AVP 96\r\n", session + "m=video\r\n", session + "m=\r\n"}) {
        ASSERT_EQ(read(text).media.size(), 1u) << text;
        EXPECT_FALSE(isPlayable(read(text).media[0])) << text;
    }
}

TEST(SessionDescription, RefusesWhatIsNone)
{
    EXPECT_FALSE(parseSessionDescription(""));
    EXPECT_FALSE(parseSessionDescription("garbage\r\n<html>\r\n"));
    EXPECT_TRUE(parseSessionDescription(session + std::string(maxDescriptionSize / 2, 'x')));
    EXPECT_FALSE(parseSessionDescription(session + std::string(maxDescriptionSize, 'x')));
}

TEST(SessionDescription, BoundsWhatItKeeps)
{
    std::string many = session;
    for (int i = 0; i < 2000; ++i)
        many += "m=audio 0 RTP/AVP 0 0 0 0 0 0 0 0\n";
    many += "a=control:last\n";
    const SessionDescription description = read(many);
    EXPECT_LE(description.media.size(), 32u);
    EXPECT_EQ(description.media.back().control, "");
}

} // namespace rtsp
