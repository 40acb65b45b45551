#include "platform/base/text.h"

#include <gtest/gtest.h>

namespace onvif {

TEST(CutUtf8, KeepsWholeCharacters)
{
    EXPECT_EQ(base::cutUtf8("abc", 3), "abc");
    EXPECT_EQ(base::cutUtf8("abc", 2), "ab");
    EXPECT_EQ(base::cutUtf8("a\u00e9", 2), "a");
    EXPECT_EQ(base::cutUtf8("a\u00e9", 3), "a\u00e9");
    EXPECT_EQ(base::cutUtf8("\U0001F4F7\U0001F4F7", 7), "\U0001F4F7");
    EXPECT_EQ(base::cutUtf8("\u00e9", 0), "");
}

TEST(CleanText, TakesOutWhatCannotBeShown)
{
    EXPECT_EQ(base::cleanText("Front door", 64), "Front door");
    EXPECT_EQ(base::cleanText("\t Front\ndoor \r\n", 64), "Front door");
    EXPECT_EQ(base::cleanText(std::string_view("a\0b\x1b[31mc\x7f", 10), 64), "a b [31mc");
    EXPECT_EQ(base::cleanText("a\u202egnp.exe", 64), "a gnp.exe") << "direction override";
    EXPECT_EQ(base::cleanText("a\u0085b", 64), "a b") << "control character of the upper half";
}

TEST(CleanText, ReplacesBrokenBytes)
{
    EXPECT_EQ(base::cleanText("caf\xe9", 64), "caf?");
    EXPECT_EQ(base::cleanText("\xff\xfe", 64), "??");
    EXPECT_EQ(base::cleanText("a\xc3", 64), "a?");
}

TEST(CleanText, CutsLongTexts)
{
    EXPECT_EQ(base::cleanText(std::string(100'000, 'x'), 31), std::string(31, 'x'));
    EXPECT_EQ(base::cleanText("ab   cd", 4), "ab") << "no blank at the end after the cut";
}

TEST(Percent, DecodesAndEncodes)
{
    EXPECT_EQ(base::percentDecode("My%20Cam%2F1"), "My Cam/1");
    EXPECT_EQ(base::percentDecode("100%"), "100%");
    EXPECT_EQ(base::percentDecode("%4"), "%4");
    EXPECT_EQ(base::percentDecode("%zz%41"), "%zzA");
    EXPECT_EQ(base::percentEncode("My Cam/\u00e9"), "My%20Cam%2F%C3%A9");
    EXPECT_EQ(base::percentDecode(base::percentEncode("a%b+c&d")), "a%b+c&d");
}

TEST(XmlEscape, LeavesNoMarkup)
{
    EXPECT_EQ(base::xmlEscape("<a b=\"c\">&'"), "&lt;a b=&quot;c&quot;&gt;&amp;&apos;");
    EXPECT_EQ(base::xmlEscape(std::string_view("a\0b\x01", 4)), "ab");
}

TEST(Uid, IsTheUuidOfTheEndpoint)
{
    const char *uuid = "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";
    EXPECT_EQ(base::uidFromEndpoint(std::string("urn:uuid:") + uuid), uuid);
    EXPECT_EQ(base::uidFromEndpoint(std::string("URN:UUID:") + uuid), uuid);
    EXPECT_EQ(base::uidFromEndpoint(std::string(" uuid:") + uuid + "\n"), uuid);
    EXPECT_EQ(base::uidFromEndpoint(uuid), uuid);
    EXPECT_EQ(base::uidFromEndpoint("ZC_00.12:34"), "ZC_00.12:34");
}

TEST(Uid, WithPathCharactersIsDropped)
{
    for (const char *bad : {"../../etc/passwd", "a/b", "a\\b", ".", "..", "a b", "a*b", "a\"b",
                            "urn:uuid:../x", "caf\xc3\xa9", "a%2Fb", "", "urn:uuid:"})
        EXPECT_EQ(base::uidFromEndpoint(bad), "") << bad;
    EXPECT_EQ(base::uidFromEndpoint(std::string_view("a\0b", 3)), "");
}

TEST(Uid, IsCutToItsField)
{
    EXPECT_EQ(base::uidFromEndpoint(std::string(200, 'a')), std::string(base::maxUidLength, 'a'));
}

TEST(Uid, ComparesWithoutCase)
{
    EXPECT_TRUE(base::sameUid("AB-1", "ab-1"));
    EXPECT_FALSE(base::sameUid("ab-1", "ab-12"));
    EXPECT_FALSE(base::sameUid("ab-1", "ab-2"));
}

} // namespace onvif
