#include "platform/onvif/scopes.h"

#include <gtest/gtest.h>

namespace onvif {

TEST(Scopes, TellTheTexts)
{
    const ScopeTexts texts = textsFromScopes(
        {"onvif://www.onvif.org/type/video_encoder", "onvif://www.onvif.org/name/Front%20door",
         "onvif://www.onvif.org/hardware/ZC-1", "onvif://www.onvif.org/location/country/china",
         "onvif://www.onvif.org/location/city/hangzhou",
         "onvif://www.onvif.org/MacAddress/00:1a:2b:3c:4d:5e"});
    EXPECT_EQ(texts.name, "Front door");
    EXPECT_EQ(texts.model, "ZC-1");
    EXPECT_EQ(texts.location, "country/china, city/hangzhou");
    EXPECT_EQ(texts.mac, (MacAddress{0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e}));
}

TEST(Scopes, OfStrangersAndBrokenOnesAreLeftOut)
{
    const ScopeTexts texts = textsFromScopes(
        {"", "onvif://www.onvif.org/", "onvif://www.onvif.org/name", "onvif://www.onvif.org/name/",
         "http://example.com/name/x", "onvif://www.onvif.org/mac/hello"});
    EXPECT_EQ(texts.name, "");
    EXPECT_EQ(texts.location, "");
    EXPECT_FALSE(texts.mac);
}

TEST(Scopes, AreCleanedAndCut)
{
    const ScopeTexts texts =
        textsFromScopes({"onvif://www.onvif.org/name/a%00b%0Ac%1B",
                         "onvif://www.onvif.org/hardware/" + std::string(100'000, 'x'),
                         "onvif://www.onvif.org/location/%ff%fe"});
    EXPECT_EQ(texts.name, "a b c");
    EXPECT_EQ(texts.model.size(), maxScopeText);
    EXPECT_EQ(texts.location, "??");
}

TEST(Scopes, AreBuiltForSetting)
{
    EXPECT_EQ(scopeFor("name", "Front door/1"), "onvif://www.onvif.org/name/Front%20door%2F1");
    EXPECT_TRUE(isScopeOf("onvif://www.onvif.org/name/x", "name"));
    EXPECT_TRUE(isScopeOf("ONVIF://www.onvif.org/Name/x", "name"));
    EXPECT_FALSE(isScopeOf("onvif://www.onvif.org/names/x", "name"));
}

TEST(Mac, ReadsTheUsualNotations)
{
    const MacAddress mac = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    for (const char *text : {"00:1a:2b:3c:4d:5e", "00-1A-2B-3C-4D-5E", "001A2B3C4D5E"})
        EXPECT_EQ(parseMac(text), mac) << text;
    for (const char *bad :
         {"", "00:1a:2b:3c:4d", "00:1a:2b:3c:4d:5g", "001A2B3C4D5", "00000000000000000",
          "00:00:00:00:00:00", "ff:ff:ff:ff:ff:ff", "01:00:5e:00:00:01"})
        EXPECT_FALSE(parseMac(bad)) << bad;
}

} // namespace onvif
