#include "platform/onvif/media_message.h"

#include "platform/onvif/xml_message.h"

#include <gtest/gtest.h>

namespace onvif {

namespace {

XmlMessage parsed(const std::string &body)
{
    auto message = XmlMessage::parse("<Envelope><Body>" + body + "</Body></Envelope>");
    EXPECT_TRUE(message) << body;
    return std::move(*message);
}

std::string profile(const std::string &token, const std::string &encoding, int width, int height)
{
    return "<trt:Profiles token=\"" + token + "\"><tt:Name>" + token +
           "</tt:Name><tt:VideoEncoderConfiguration><tt:Encoding>" + encoding +
           "</tt:Encoding><tt:Resolution><tt:Width>" + std::to_string(width) +
           "</tt:Width><tt:Height>" + std::to_string(height) +
           "</tt:Height></tt:Resolution></tt:VideoEncoderConfiguration></trt:Profiles>";
}

std::vector<MediaProfile> profiles(const std::string &content)
{
    return parseProfiles(
        parsed("<trt:GetProfilesResponse>" + content + "</trt:GetProfilesResponse>"));
}

MediaProfile sized(const std::string &token, int width, int height, const std::string &source = {})
{
    return {token, "", source, width, height};
}

} // namespace

TEST(MediaMessage, BuildsItsQuestions)
{
    EXPECT_EQ(buildGetStreamUri("p&1"),
              "<trt:GetStreamUri><trt:StreamSetup><tt:Stream>RTP-Unicast</tt:Stream>"
              "<tt:Transport><tt:Protocol>RTSP</tt:Protocol></tt:Transport></trt:StreamSetup>"
              "<trt:ProfileToken>p&amp;1</trt:ProfileToken></trt:GetStreamUri>");
    EXPECT_EQ(buildSetSynchronizationPoint("p1"),
              "<trt:SetSynchronizationPoint><trt:ProfileToken>p1</trt:ProfileToken>"
              "</trt:SetSynchronizationPoint>");
}

TEST(MediaMessage, BuildsTheQuestionsOfMedia2)
{
    constexpr MediaVersion version = MediaVersion::Media2;
    EXPECT_EQ(buildGetProfiles(version),
              "<tr2:GetProfiles><tr2:Type>VideoSource</tr2:Type><tr2:Type>VideoEncoder</tr2:Type>"
              "</tr2:GetProfiles>");
    EXPECT_EQ(buildGetStreamUri("p&1", version),
              "<tr2:GetStreamUri><tr2:Protocol>RTSP</tr2:Protocol>"
              "<tr2:ProfileToken>p&amp;1</tr2:ProfileToken></tr2:GetStreamUri>");
    EXPECT_EQ(buildSetSynchronizationPoint("p1", version),
              "<tr2:SetSynchronizationPoint><tr2:ProfileToken>p1</tr2:ProfileToken>"
              "</tr2:SetSynchronizationPoint>");
    EXPECT_EQ(buildGetSnapshotUri("p1", version),
              "<tr2:GetSnapshotUri><tr2:ProfileToken>p1</tr2:ProfileToken></tr2:GetSnapshotUri>");
}

TEST(MediaMessage, ReadsTheAnswersOfMedia2)
{
    const auto found = profiles(
        "<tr2:Profiles token=\"main\"><tr2:Name>Main</tr2:Name><tr2:Configurations>"
        "<tr2:VideoSource token=\"c1\"><tt:SourceToken>lens_1</tt:SourceToken></tr2:VideoSource>"
        "<tr2:VideoEncoder token=\"e1\"><tt:Encoding>H265</tt:Encoding><tt:Resolution>"
        "<tt:Width>3840</tt:Width><tt:Height>2160</tt:Height></tt:Resolution></tr2:VideoEncoder>"
        "</tr2:Configurations></tr2:Profiles><tr2:Profiles token=\"bare\"/>");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].token, "main");
    EXPECT_EQ(found[0].source, "lens_1");
    EXPECT_EQ(found[0].encoding, "H265");
    EXPECT_EQ(found[0].height, 2160);
    EXPECT_EQ(parseStreamUri(parsed("<tr2:GetStreamUriResponse><tr2:Uri>rtsp://c/1</tr2:Uri>"
                                    "</tr2:GetStreamUriResponse>")),
              "rtsp://c/1");
    EXPECT_EQ(parseSnapshotUri(parsed("<tr2:GetSnapshotUriResponse><tr2:Uri>http://c/1</tr2:Uri>"
                                      "</tr2:GetSnapshotUriResponse>")),
              "http://c/1");
}

TEST(MediaMessage, TakesJpegWhereThereIsNothingElse)
{
    EXPECT_EQ(profiles(profile("a", "JPEG", 640, 480) + profile("b", "MPEG4", 1, 1)).size(), 1u);
    const auto better = profiles(profile("a", "JPEG", 640, 480) + profile("b", "H265", 320, 240));
    ASSERT_EQ(better.size(), 1u);
    EXPECT_EQ(better[0].token, "b");
}

TEST(MediaMessage, ReadsH264ProfilesOnly)
{
    const auto found = profiles(profile("a", "H264", 1920, 1080) + profile("b", "JPEG", 640, 480) +
                                profile("", "H264", 1, 1) + "<trt:Profiles token=\"c\"/>" +
                                profile("d", "H264", -5, 999'999));
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].token, "a");
    EXPECT_EQ(found[0].width, 1920);
    EXPECT_EQ(found[0].height, 1080);
    EXPECT_EQ(found[1].token, "d");
    EXPECT_EQ(found[1].width, 0);
    EXPECT_EQ(found[1].height, 32'768);
}

TEST(MediaMessage, LimitsTheNumberOfProfiles)
{
    std::string many;
    for (int i = 0; i < 500; ++i)
        many += profile("p" + std::to_string(i), "H264", 640, 360);
    EXPECT_EQ(profiles(many).size(), maxProfiles);
    EXPECT_TRUE(profiles(profile(std::string(10'000, 't'), "H264", 1, 1)).empty());
}

TEST(MediaMessage, ChoosesLargestAndSmallest)
{
    const auto choice = chooseProfiles(
        {sized("mid", 1280, 720), sized("small", 640, 360), sized("big", 1920, 1080)});
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->main.token, "big");
    EXPECT_EQ(choice->sub.token, "small");
    const auto equal = chooseProfiles({sized("first", 640, 360), sized("second", 640, 360)});
    EXPECT_EQ(equal->main.token, "first");
    EXPECT_EQ(equal->sub.token, "first");
    EXPECT_FALSE(chooseProfiles({}));
}

TEST(MediaMessage, PassesOverAStreamTooCoarseForATile)
{
    const auto choice = chooseProfiles(
        {sized("phone", 160, 120), sized("main", 1920, 1080), sized("sub", 640, 360)});
    EXPECT_EQ(choice->sub.token, "sub");
    // But a coarse one costs less than the main stream.
    const auto two = chooseProfiles({sized("main", 1920, 1080), sized("phone", 160, 120)});
    EXPECT_EQ(two->main.token, "main");
    EXPECT_EQ(two->sub.token, "phone");
}

TEST(MediaMessage, ChoosesBothOfOneLens)
{
    const auto choice =
        chooseProfiles({sized("wide-main", 1920, 1080, "1"), sized("wide-sub", 704, 576, "1"),
                        sized("tele-main", 2560, 1440, "2"), sized("tele-sub", 640, 360, "2")});
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->main.token, "wide-main");
    EXPECT_EQ(choice->sub.token, "wide-sub");
}

TEST(MediaMessage, ReadsTheVideoSource)
{
    const auto found = profiles("<trt:Profiles token=\"a\"><tt:VideoSourceConfiguration>"
                                "<tt:SourceToken>lens_2</tt:SourceToken>"
                                "</tt:VideoSourceConfiguration><tt:VideoEncoderConfiguration>"
                                "<tt:Encoding>H264</tt:Encoding></tt:VideoEncoderConfiguration>"
                                "</trt:Profiles>");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].source, "lens_2");
}

TEST(MediaMessage, ReadsTheStreamAddress)
{
    EXPECT_EQ(parseStreamUri(parsed("<GetStreamUriResponse><MediaUri>"
                                    "<Uri> rtsp://1.2.3.4/a?b=1&amp;c=2 </Uri>"
                                    "</MediaUri></GetStreamUriResponse>")),
              "rtsp://1.2.3.4/a?b=1&c=2");
    EXPECT_EQ(parseStreamUri(parsed("<GetStreamUriResponse/>")), "");
}

} // namespace onvif
