#include "platform/onvif/xml_message.h"

#include <gtest/gtest.h>

#include <string>

namespace onvif {

namespace {

std::string envelope(const std::string &body)
{
    return "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\"><s:Header/><s:Body>" +
           body + "</s:Body></s:Envelope>";
}

std::string nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<a>";
    for (int i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

} // namespace

TEST(XmlMessage, FindsElementsWhateverTheirPrefix)
{
    const auto message =
        XmlMessage::parse(envelope("<x:A><y:B k:id=' 7 '> 12 </y:B><B>true</B></x:A>"));
    ASSERT_TRUE(message);
    const pugi::xml_node a = child(message->body(), "A");
    EXPECT_EQ(textOf(child(message->body(), {"A", "B"})), "12");
    EXPECT_EQ(numberOf(child(a, "B"), -1), 12);
    EXPECT_EQ(attribute(child(a, "B"), "id"), " 7 ");
    ASSERT_EQ(children(a, "B").size(), 2u);
    EXPECT_TRUE(isTrue(children(a, "B")[1]));
    EXPECT_FALSE(child(message->body(), {"A", "C", "D"}));
}

TEST(XmlMessage, ReadsNumbersWholeOrNotAtAll)
{
    const auto message =
        XmlMessage::parse(envelope("<a>80x</a><b>99999999999</b><c></c><d>-5</d><e>0x10</e>"));
    ASSERT_TRUE(message);
    for (const char *name : {"a", "b", "c", "e"})
        EXPECT_EQ(numberOf(child(message->body(), name), 42), 42) << name;
    EXPECT_EQ(numberOf(child(message->body(), "d"), 42), -5);
}

TEST(XmlMessage, RefusesWhatIsNoEnvelope)
{
    for (const char *text : {"", " ", "hello", "<a/>", "<Envelope/>", "<Envelope><Body>",
                             "<Envelope><Body></Envelope>", "\xff\xfe\xff\xfe", "{\"a\":1}"})
        EXPECT_FALSE(XmlMessage::parse(text)) << text;
}

TEST(XmlMessage, RefusesEveryTruncation)
{
    const std::string whole = envelope("<a><b>text</b></a>");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(XmlMessage::parse(std::string_view(whole).substr(0, length))) << length;
}

TEST(XmlMessage, RefusesEntityBombs)
{
    std::string bomb = "<!DOCTYPE lolz [<!ENTITY lol \"lol\">";
    for (int i = 1; i < 10; ++i) {
        const std::string inner = i == 1 ? "lol" : "lol" + std::to_string(i - 1);
        bomb += "<!ENTITY lol" + std::to_string(i) + " \"";
        for (int j = 0; j < 10; ++j)
            bomb += '&' + inner + ';';
        bomb += "\">";
    }
    bomb += "]>" + envelope("<a>&lol9;</a>");
    EXPECT_FALSE(XmlMessage::parse(bomb));
    EXPECT_FALSE(XmlMessage::parse("<!DOCTYPE a [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>" +
                                   envelope("<a>&x;</a>")));
}

TEST(XmlMessage, DoesNotReplaceUnknownEntities)
{
    const auto message = XmlMessage::parse(envelope("<a>&lol9;&amp;&#65;</a>"));
    ASSERT_TRUE(message);
    EXPECT_EQ(textOf(child(message->body(), "a")), "&lol9;&A");
}

TEST(XmlMessage, RefusesDeepTrees)
{
    EXPECT_TRUE(XmlMessage::parse(envelope(nested(XmlMessage::maxDepth - 4))));
    EXPECT_FALSE(XmlMessage::parse(envelope(nested(XmlMessage::maxDepth + 1))));
    EXPECT_FALSE(XmlMessage::parse(envelope(nested(140'000))));
}

TEST(XmlMessage, RefusesWideTrees)
{
    std::string many;
    for (int i = 0; i <= XmlMessage::maxNodes; ++i)
        many += "<a/>";
    EXPECT_FALSE(XmlMessage::parse(envelope(many)));
}

TEST(XmlMessage, RefusesOversizedMessages)
{
    const std::string frame = envelope("");
    EXPECT_TRUE(XmlMessage::parse(envelope(std::string(XmlMessage::maxBytes - frame.size(), 'x'))));
    EXPECT_FALSE(
        XmlMessage::parse(envelope(std::string(XmlMessage::maxBytes - frame.size() + 1, 'x'))));
}

} // namespace onvif
