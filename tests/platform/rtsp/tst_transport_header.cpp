#include "platform/rtsp/transport_header.h"

#include <gtest/gtest.h>

using rtsp::NumberPair;
using rtsp::parseSession;
using rtsp::parseTransport;

namespace {

TEST(TransportHeader, ReadsInterleavedChannels)
{
    const auto answer =
        parseTransport("RTP/AVP/TCP;unicast; Interleaved = 4-5 ;ssrc=12345678;mode=\"PLAY\"");
    EXPECT_TRUE(answer.isTcp);
    EXPECT_FALSE(answer.isUdp);
    EXPECT_EQ(answer.interleaved, NumberPair(4, 5));
}

TEST(TransportHeader, ReadsPortsAndSource)
{
    const auto answer = parseTransport(
        "RTP/AVP;unicast;client_port=5000-5001;server_port=6000-6001;source=\"10.0.0.7\"");
    EXPECT_FALSE(answer.isTcp);
    EXPECT_TRUE(answer.isUdp);
    EXPECT_EQ(answer.serverPorts, NumberPair(6000, 6001));
    EXPECT_EQ(answer.source, "10.0.0.7");
    EXPECT_EQ(parseTransport("RTP/AVP;server_port=6000").serverPorts, NumberPair(6000, 6001));
}

TEST(TransportHeader, AnUnclearOneIsNeither)
{
    for (const char *text : {"", "RTP/AVP", ";;;=", "RTP/AVP;server_port=99999", "interleaved"}) {
        const auto answer = parseTransport(text);
        EXPECT_FALSE(answer.isTcp) << text;
        EXPECT_FALSE(answer.isUdp) << text;
    }
    EXPECT_TRUE(parseTransport("RTP/AVP;multicast;destination=239.0.0.1").isMulticast);
}

TEST(TransportHeader, ReadsSessions)
{
    EXPECT_EQ(parseSession("  1234 ; Timeout = 10 ").id, "1234");
    EXPECT_EQ(parseSession("1234;timeout=10").timeoutSeconds, 10);
    EXPECT_EQ(parseSession("1234;timeout=30s").timeoutSeconds, 30);
    EXPECT_EQ(parseSession("1234").timeoutSeconds, 60);
    EXPECT_EQ(parseSession("1234;timeout=0").timeoutSeconds, 2);
    EXPECT_EQ(parseSession("1234;timeout=x").timeoutSeconds, 60);
    EXPECT_EQ(parseSession("1234;timeout=999999999").timeoutSeconds, 86400);
    EXPECT_EQ(parseSession("").id, "");
}

} // namespace
