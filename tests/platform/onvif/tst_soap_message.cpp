#include "platform/onvif/soap_message.h"

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

std::string clock(const std::string &year, const std::string &month, const std::string &second)
{
    return "<GetSystemDateAndTimeResponse><SystemDateAndTime><UTCDateTime><Time><Hour>12</Hour>"
           "<Minute>34</Minute><Second>" +
           second + "</Second></Time><Date><Year>" + year + "</Year><Month>" + month +
           "</Month><Day>1</Day></Date></UTCDateTime></SystemDateAndTime>"
           "</GetSystemDateAndTimeResponse>";
}

} // namespace

TEST(Envelope, IsThisText)
{
    EXPECT_EQ(buildEnvelope("<tds:GetScopes/>"),
              R"(<?xml version="1.0" encoding="UTF-8"?>)"
              R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
              R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
              R"( xmlns:trt="http://www.onvif.org/ver10/media/wsdl")"
              R"( xmlns:tr2="http://www.onvif.org/ver20/media/wsdl")"
              R"( xmlns:tt="http://www.onvif.org/ver10/schema">)"
              R"(<s:Body><tds:GetScopes/></s:Body></s:Envelope>)");
}

// Nonce, date, password and digest of the example in ONVIF's programmer's guide, 6.1.1.3.
TEST(UsernameToken, ProvesThePassword)
{
    TokenStamp stamp;
    stamp.created = "2010-09-16T07:50:45Z";
    // Base64 LKqI6G/AikKCQrN0zqZFlg==
    stamp.nonce = "\x2c\xaa\x88\xe8\x6f\xc0\x8a\x42\x82\x42\xb3\x74\xce\xa6\x45\x96";
    const std::string text = buildSignedEnvelope("<a/>", {"user", "userpassword"}, stamp);
    EXPECT_NE(text.find("<wsse:Username>user</wsse:Username>"), std::string::npos);
    EXPECT_NE(text.find("#PasswordDigest\">tuOSpGlFlIXsozq4HFNeeGeFLEI=</wsse:Password>"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("#Base64Binary\">LKqI6G/AikKCQrN0zqZFlg==</wsse:Nonce>"),
              std::string::npos);
    EXPECT_NE(text.find("<wsu:Created>2010-09-16T07:50:45Z</wsu:Created>"), std::string::npos);
    EXPECT_EQ(text.find("userpassword"), std::string::npos);
    EXPECT_TRUE(XmlMessage::parse(text));
}

TEST(UsernameToken, EscapesTheUserName)
{
    const std::string text = buildSignedEnvelope("<a/>", {"<b>&", "x"}, TokenStamp::now(0));
    EXPECT_NE(text.find("<wsse:Username>&lt;b&gt;&amp;</wsse:Username>"), std::string::npos);
    EXPECT_TRUE(XmlMessage::parse(text));
}

TEST(UsernameToken, NeverUsesANonceTwice)
{
    const TokenStamp first = TokenStamp::now(0);
    EXPECT_EQ(first.nonce.size(), 16u);
    EXPECT_NE(first.nonce, TokenStamp::now(0).nonce);
    // Clocks far outside the calendar still give a date.
    EXPECT_FALSE(TokenStamp::now(std::int64_t(1) << 60).created.empty());
}

TEST(Fault, TellsRefusalsApart)
{
    const auto fault = [](const std::string &subcode, const std::string &reason) {
        return faultIn(parsed("<Fault><Code><Value>s:Sender</Value><Subcode><Value>" + subcode +
                              "</Value></Subcode></Code><Reason><Text>" + reason +
                              "</Text></Reason></Fault>"));
    };
    EXPECT_TRUE(fault("ter:NotAuthorized", "")->isRefusal);
    EXPECT_TRUE(fault("wsse:FailedAuthentication", "")->isRefusal);
    EXPECT_TRUE(fault("ter:X", "Sender not authorized")->isRefusal);
    for (const char *reason : {"Authentication failed", "Login failed", "Access denied!",
                               "Authority failure", "wsse:MessageExpired"})
        EXPECT_TRUE(fault("ter:X", reason)->isRefusal) << reason;
    EXPECT_FALSE(fault("ter:InvalidArgVal", "No such profile")->isRefusal);
    EXPECT_EQ(fault("ter:InvalidArgVal", "No such profile")->text,
              "s:Sender ter:InvalidArgVal: No such profile");
    EXPECT_TRUE(faultIn(parsed("<Fault><faultcode>wsse:FailedCheck</faultcode>"
                               "<faultstring>no</faultstring></Fault>"))
                    ->isRefusal);
    EXPECT_FALSE(faultIn(parsed("<GetScopesResponse/>")));
    EXPECT_LE(fault("a", std::string(10'000, 'x'))->text.size(), 200u);
}

TEST(SystemTime, IsReadInUtc)
{
    EXPECT_EQ(parseSystemTime(parsed(clock("2024", "3", "56"))), 1709296496);
}

TEST(SystemTime, OfABrokenClockIsAbsent)
{
    EXPECT_FALSE(parseSystemTime(parsed(clock("2024", "13", "56"))));
    EXPECT_FALSE(parseSystemTime(parsed(clock("2024", "3", "61"))));
    EXPECT_FALSE(parseSystemTime(parsed(clock("-5", "3", "1"))));
    EXPECT_FALSE(parseSystemTime(parsed(clock("", "", ""))));
    EXPECT_FALSE(parseSystemTime(parsed("<GetSystemDateAndTimeResponse/>")));
}

namespace {

std::optional<std::int64_t> localTime(const std::string &zone, const std::string &summer = "false")
{
    return parseSystemTime(parsed(
        "<GetSystemDateAndTimeResponse><SystemDateAndTime><DaylightSavings>" + summer +
        "</DaylightSavings><TimeZone><TZ>" + zone +
        "</TZ></TimeZone><LocalDateTime><Time><Hour>12</Hour><Minute>0</Minute><Second>0</Second>"
        "</Time><Date><Year>1970</Year><Month>1</Month><Day>1</Day></Date></LocalDateTime>"
        "</SystemDateAndTime></GetSystemDateAndTimeResponse>"));
}

} // namespace

TEST(SystemTime, IsReadFromLocalTimeWhereThereIsNoUtc)
{
    EXPECT_EQ(localTime("CST-8"), 4 * 3600);
    EXPECT_EQ(localTime("UTC0"), 12 * 3600);
    EXPECT_EQ(localTime("PST8PDT,M3.2.0,M11.1.0"), 20 * 3600);
    EXPECT_EQ(localTime("PST8PDT,M3.2.0,M11.1.0", "true"), 19 * 3600);
    EXPECT_EQ(localTime("&lt;+0330&gt;-3:30"), 12 * 3600 - 3 * 3600 - 1800);
    for (const char *bad : {"", "Europe/Berlin", "CST-99", "../../etc/passwd", "/dev/zero", "&lt;"})
        EXPECT_FALSE(localTime(bad)) << bad;
}

} // namespace onvif
