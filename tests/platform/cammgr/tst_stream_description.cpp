#include "platform/cammgr/stream_description.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace cammgr {

namespace {

const std::string session = "v=0\r\no=- 1 1 IN IP4 192.0.2.20\r\ns=Camera\r\nt=0 0\r\n";
const std::string h264 = "m=video 0 RTP/AVP 96\r\na=rtpmap:96 H264/90000\r\n";
const std::string g711 = "m=audio 0 RTP/AVP 0\r\n";
const std::string backChannel = g711 + "a=sendonly\r\n";

OfferedMedia offeredIn(const std::string &text)
{
    gst_init(nullptr, nullptr);
    GstSDPMessage *made = nullptr;
    gst_sdp_message_new(&made);
    const std::unique_ptr<GstSDPMessage, decltype(&gst_sdp_message_free)> message(
        made, &gst_sdp_message_free);
    gst_sdp_message_parse_buffer(reinterpret_cast<const guint8 *>(text.data()),
                                 static_cast<guint>(text.size()), message.get());
    return readOfferedMedia(message.get());
}

} // namespace

TEST(StreamDescription, TellsVideoAndAudio)
{
    const OfferedMedia both = offeredIn(session + h264 + g711);
    EXPECT_TRUE(both.hasVideo);
    EXPECT_TRUE(both.hasAudio);
    EXPECT_FALSE(offeredIn(session + h264).hasAudio);
    EXPECT_FALSE(offeredIn(session + g711).hasVideo);
}

TEST(StreamDescription, KnowsStaticPayloadTypesThatAreNotMapped)
{
    for (const char *payload : {"0", "8"})
        EXPECT_TRUE(offeredIn(session + "m=audio 0 RTP/AVP " + payload + "\r\n").hasAudio);
    for (const char *payload : {"18", "95", "96", "-1", "256", "99999999999"})
        EXPECT_FALSE(offeredIn(session + "m=audio 0 RTP/AVP " + payload + "\r\n").hasAudio);
}

TEST(StreamDescription, NamesTheEncodingOfAStream)
{
    const auto name = [](const char *text) -> std::string {
        GstStructure *format = gst_structure_from_string(text, nullptr);
        const char *encoding = encodingNameOf(format);
        const std::string copy = encoding ? encoding : "none";
        gst_structure_free(format);
        return copy;
    };
    gst_init(nullptr, nullptr);
    EXPECT_EQ(name("application/x-rtp, payload=(int)0, encoding-name=(string)OPUS"), "OPUS");
    EXPECT_EQ(name("application/x-rtp, payload=(int)0"), "PCMU");
    EXPECT_EQ(name("application/x-rtp, payload=(int)8"), "PCMA");
    EXPECT_EQ(name("application/x-rtp, payload=(int)96"), "none");
    EXPECT_EQ(name("application/x-rtp, payload=(int)-1"), "none");
    EXPECT_EQ(name("application/x-rtp"), "none");
}

TEST(StreamDescription, LeavesOutTheBackChannel)
{
    EXPECT_FALSE(offeredIn(session + h264 + backChannel).hasAudio);
    EXPECT_TRUE(offeredIn(session + h264 + backChannel + g711).hasAudio);
}

TEST(StreamDescription, LeavesOutKindsThatCannotBePlayed)
{
    EXPECT_FALSE(
        offeredIn(session + "m=video 0 RTP/AVP 96\r\na=rtpmap:96 H265/90000\r\n").hasVideo);
    EXPECT_FALSE(
        offeredIn(session + "m=audio 0 RTP/AVP 97\r\na=rtpmap:97 OPUS/48000\r\n").hasAudio);
    EXPECT_FALSE(
        offeredIn(session + "m=application 0 RTP/AVP 96\r\na=rtpmap:96 H264/90000\r\n").hasVideo);
}

TEST(StreamDescription, FindsTheOneThatCanAmongSeveralFormats)
{
    EXPECT_TRUE(offeredIn(session + "m=video 0 RTP/AVP 95 96 x 99999999999\r\n"
                                    "a=rtpmap:95 H265/90000\r\na=rtpmap:96 h264/90000\r\n")
                    .hasVideo);
}

TEST(StreamDescription, OfferingNothingIsNoError)
{
    for (const std::string &text :
         {session, std::string("garbage"), session + "m=video 0 RTP/AVP 96\r\n",
          session + "m=video\r\n"}) {
        EXPECT_FALSE(offeredIn(text).hasVideo) << text;
        EXPECT_FALSE(offeredIn(text).hasAudio) << text;
    }
}

} // namespace cammgr
