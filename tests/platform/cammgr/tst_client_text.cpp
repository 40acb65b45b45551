#include "platform/cammgr/client_text.h"

#include <gtest/gtest.h>

using cammgr::isOneWord;
using cammgr::utf8Text;

namespace {

TEST(ClientText, KeepsUtf8)
{
    EXPECT_EQ(utf8Text("admin"), "admin");
    EXPECT_EQ(utf8Text("/home/J\xc3\xbcrgen/Album"), "/home/J\xc3\xbcrgen/Album");
    EXPECT_EQ(utf8Text(""), "");
    EXPECT_EQ(utf8Text(nullptr), "");
}

TEST(ClientText, TakesEverythingElseAsLatin1)
{
    EXPECT_EQ(utf8Text("/home/J\xfcrgen/Album"), "/home/J\xc3\xbcrgen/Album");
    EXPECT_EQ(utf8Text("\xe9\xff"), "\xc3\xa9\xc3\xbf");
}

TEST(ClientText, AWordHasNoBlanksAndNoControlCharacters)
{
    EXPECT_TRUE(isOneWord("/live/0/h264.sdp?x=\xc3\xbc"));
    for (const char *text : {"a b", "a\r\nb", "\t", "a\x7f", "\x01"})
        EXPECT_FALSE(isOneWord(text));
    EXPECT_FALSE(isOneWord(std::string("a\0b", 3)));
}

} // namespace
