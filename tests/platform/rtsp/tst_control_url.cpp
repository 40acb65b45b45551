#include "platform/rtsp/control_url.h"

#include <gtest/gtest.h>

using rtsp::aggregateUrls;
using rtsp::controlUrls;
using rtsp::resolveUrl;
using Urls = std::vector<std::string>;

namespace {

TEST(ControlUrl, AppendsToTheBase)
{
    EXPECT_EQ(controlUrls({"rtsp://c/live", "rtsp://c/live/", ""}, "track1").front(),
              "rtsp://c/live/track1");
    EXPECT_EQ(controlUrls({"rtsp://c/live", "", ""}, "track1").front(), "rtsp://c/live/track1");
    EXPECT_EQ(controlUrls({"rtsp://c/live", "", ""}, "/track1").front(), "rtsp://c/live/track1");
}

TEST(ControlUrl, AnAbsoluteOneStandsForItself)
{
    EXPECT_EQ(controlUrls({"rtsp://c/live", "rtsp://c/live/", ""}, "rtsp://10.0.0.9/live/track1"),
              Urls{"rtsp://10.0.0.9/live/track1"});
}

TEST(ControlUrl, NoneAndAStarAreTheWhole)
{
    for (const char *control : {"", "*"})
        EXPECT_EQ(controlUrls({"rtsp://c/live", "", ""}, control), Urls{"rtsp://c/live"});
}

TEST(ControlUrl, AQueryIsAppendedToFirstAndMovedNext)
{
    const Urls urls = controlUrls({"rtsp://c/live?ch=1", "rtsp://c/live?ch=1/", ""}, "trackID=1");
    ASSERT_GE(urls.size(), 2u);
    EXPECT_EQ(urls[0], "rtsp://c/live?ch=1/trackID=1");
    EXPECT_EQ(urls[1], "rtsp://c/live/trackID=1?ch=1");
}

TEST(ControlUrl, OffersEachOnlyOnce)
{
    Urls urls = controlUrls({"rtsp://c/a/live", "rtsp://c/a/live/", ""}, "track1");
    EXPECT_EQ(urls, (Urls{"rtsp://c/a/live/track1", "rtsp://c/a/track1"}));
}

TEST(ControlUrl, TheSessionsAddressIsTheBase)
{
    EXPECT_EQ(controlUrls({"rtsp://c/live", "", "rtsp://c/other/"}, "track1").front(),
              "rtsp://c/other/track1");
    EXPECT_EQ(aggregateUrls({"rtsp://c/live", "rtsp://c/live/", "rtsp://c/other"}).front(),
              "rtsp://c/other");
    EXPECT_EQ(aggregateUrls({"rtsp://c/live", "rtsp://c/live/", "*"}),
              (Urls{"rtsp://c/live/", "rtsp://c/live"}));
    EXPECT_EQ(aggregateUrls({"rtsp://c/live", "", "session"}).front(), "rtsp://c/live/session");
}

TEST(ControlUrl, ResolvesReferences)
{
    EXPECT_EQ(resolveUrl("rtsp://c:554/a/b?x=1", "/d"), "rtsp://c:554/d");
    EXPECT_EQ(resolveUrl("rtsp://c:554/a/b?x=1", "d"), "rtsp://c:554/a/d");
    EXPECT_EQ(resolveUrl("rtsp://c/a/b?x=1", "?x=2"), "rtsp://c/a/b?x=2");
    EXPECT_EQ(resolveUrl("rtsp://c", "d"), "rtsp://c/d");
    EXPECT_EQ(resolveUrl("rtsp://c/a", ""), "");
    EXPECT_EQ(resolveUrl("rtsp://c/a", " rtsps://d/e "), "rtsps://d/e");
}

TEST(ControlUrl, AnyTextIsSafe)
{
    for (const std::string text : {"", "/", "?", "://", "x://", "rtsp://", "a b", "//", "?/?"}) {
        EXPECT_FALSE(controlUrls({"rtsp://c/live", text, text}, text).empty());
        EXPECT_FALSE(controlUrls({text, "", ""}, "track1").empty());
        EXPECT_FALSE(aggregateUrls({"rtsp://c/live", text, text}).empty());
    }
}

} // namespace
