#include "platform/rtsp/aac_config.h"
#include "platform/rtsp/aac_depacketizer.h"
#include "platform/rtsp/audio_depacketizer.h"
#include "platform/rtsp/session_description.h"
#include "tests/platform/rtsp/support/rtp_stream.h"

#include <gtest/gtest.h>

#include <string>

namespace rtsp {

namespace {

const Bytes frameA = bytesOf("214c5a5b5c");
const Bytes frameB = bytesOf("21aabbccddeeff");

class AudioDepacketizerTest : public testing::Test
{
protected:
    /// Makes what unpacks a format of the payload type 96; false when it cannot be received.
    bool describe(const std::string &map, const std::string &parameters = {})
    {
        const std::optional<SessionDescription> description = parseSessionDescription(
            "v=0\nm=audio 0 RTP/AVP 96\na=rtpmap:96 " + map + "\na=fmtp:96 " + parameters + "\n");
        const MediaDescription &medium = description->media[0];
        m_client = RecordingClient();
        m_depacketizer = makeDepacketizer(medium, medium.formats[0], m_client);
        return m_depacketizer != nullptr;
    }
    void take(const Bytes &payload, bool marker = true, bool afterGap = false)
    {
        m_depacketizer->take({payload, m_time, marker, afterGap, at(0)});
    }
    void takeNext(const Bytes &payload, bool marker = true, bool afterGap = false)
    {
        m_time += 1024;
        take(payload, marker, afterGap);
    }
    const base::AudioFormat &format() const { return *m_client.pieces.at(0).format; }
    std::vector<Bytes> payloads() const
    {
        std::vector<Bytes> all;
        for (const AudioPiece &piece : m_client.pieces)
            all.push_back(piece.payload);
        return all;
    }

    RecordingClient m_client;
    std::unique_ptr<Depacketizer> m_depacketizer;
    uint32_t m_time = 0;
};

/// Frames with their headers of 13 + 3 bits (AAC-hbr).
Bytes generic(std::initializer_list<Bytes> frames)
{
    Bytes packet;
    append(packet, 16 * frames.size(), 2);
    for (const Bytes &frame : frames)
        append(packet, frame.size() << 3, 2);
    for (const Bytes &frame : frames)
        append(packet, frame);
    return packet;
}

/// A part of a frame.
Bytes genericPart(std::size_t whole, const Bytes &part)
{
    Bytes packet = {0, 16};
    append(packet, whole << 3, 2);
    append(packet, part);
    return packet;
}

} // namespace

TEST_F(AudioDepacketizerTest, HandsOnG711AsItIs)
{
    ASSERT_TRUE(describe("PCMU/8000"));
    take(bytesOf("ff7f00"));
    EXPECT_EQ(payloads(), std::vector<Bytes>({bytesOf("ff7f00")}));
    EXPECT_EQ(format().codec, base::AudioCodec::Pcmu);
    EXPECT_EQ(format().rate, 8000);
    EXPECT_EQ(format().channels, 1);
    ASSERT_TRUE(describe("PCMA/16000/2"));
    take(bytesOf("ff7f"));
    EXPECT_EQ(format().codec, base::AudioCodec::Pcma);
    EXPECT_EQ(format().rate, 16000);
    EXPECT_EQ(format().channels, 2);
}

TEST_F(AudioDepacketizerTest, HandsOnWholeSamplesOfL16)
{
    ASSERT_TRUE(describe("L16/44100/2"));
    take(bytesOf("0001000200030004aa"));
    EXPECT_EQ(payloads(), std::vector<Bytes>({bytesOf("0001000200030004")}));
    EXPECT_EQ(format().codec, base::AudioCodec::L16);
    take(bytesOf("000100"));
    take({});
    EXPECT_EQ(m_client.pieces.size(), 1u);
}

TEST_F(AudioDepacketizerTest, HandsOnOpus)
{
    ASSERT_TRUE(describe("opus/48000/2"));
    take(bytesOf("fc112233"));
    EXPECT_EQ(payloads(), std::vector<Bytes>({bytesOf("fc112233")}));
    EXPECT_EQ(format().codec, base::AudioCodec::Opus);
    EXPECT_EQ(format().rate, 48000);
    EXPECT_EQ(format().channels, 2);
}

TEST_F(AudioDepacketizerTest, HandsOnG726InOnePacking)
{
    for (const auto &[map, bits] : {std::pair("G726-16", 2), std::pair("G726-24", 3),
                                    std::pair("G726-32", 4), std::pair("G726-40", 5)}) {
        ASSERT_TRUE(describe(std::string(map) + "/8000"));
        take(bytesOf("123456789a"));
        EXPECT_EQ(payloads(), std::vector<Bytes>({bytesOf("123456789a")}));
        EXPECT_EQ(format().codec, base::AudioCodec::G726);
        EXPECT_EQ(format().bitsPerSample, bits);
        EXPECT_EQ(format().rate, 8000);
    }
    ASSERT_TRUE(describe("AAL2-G726-32/8000"));
    take(bytesOf("1234"));
    EXPECT_EQ(payloads(), std::vector<Bytes>({bytesOf("2143")}));
    EXPECT_EQ(format().bitsPerSample, 4);
}

TEST_F(AudioDepacketizerTest, RepacksEachSizeOfG726)
{
    // Samples 1, 2, 3, 0 of 2 bits; 1 to 8 of 3 bits; 1 to 8 of 5 bits
    EXPECT_EQ(repackG726(bytesOf("6c"), 2), bytesOf("39"));
    EXPECT_EQ(repackG726(Bytes{0b00101001, 0b11001011, 0b10111000}, 3),
              (Bytes{0b11010001, 0b01011000, 0b00011111}));
    EXPECT_EQ(repackG726(Bytes{0b00001000, 0b10000110, 0b01000010, 0b10011000, 0b11101000}, 5),
              (Bytes{0b01000001, 0b00001100, 0b01010010, 0b11001100, 0b01000001}));
}

TEST_F(AudioDepacketizerTest, TellsALossOfSound)
{
    ASSERT_TRUE(describe("PCMU/8000"));
    take({1});
    take({2}, false, true);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.pieces.size(), 2u);
}

TEST_F(AudioDepacketizerTest, UnpacksAac)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/1", "mode=AAC-hbr;config=1408;sizeLength=13;"
                                                  "indexLength=3;indexDeltaLength=3"));
    take(generic({frameA, frameB}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA, frameB}));
    EXPECT_EQ(format().codec, base::AudioCodec::Aac);
    EXPECT_EQ(format().rate, 16000);
    EXPECT_EQ(format().channels, 1);
    EXPECT_EQ(format().configuration, bytesOf("1408"));
    EXPECT_EQ(m_client.pieces[0].later, 0);
    EXPECT_EQ(m_client.pieces[1].later, 64'000'000);
}

TEST_F(AudioDepacketizerTest, UnpacksAacOfLowBitRates)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/1", "mode=AAC-lbr;config=1408"));
    // Two headers of 6 + 2 bits
    take(joined({{0, 16, static_cast<uint8_t>(frameA.size() << 2),
                  static_cast<uint8_t>(frameB.size() << 2)},
                 frameA,
                 frameB}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA, frameB}));
}

TEST_F(AudioDepacketizerTest, AacWithoutModeOrConfigurationIsGuessed)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/2"));
    take(generic({frameA}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA}));
    EXPECT_EQ(format().configuration, bytesOf("1410"));
    EXPECT_EQ(format().rate, 16000);
    EXPECT_EQ(format().channels, 2);
    ASSERT_TRUE(describe("MPEG4-GENERIC/44100", "config=ff"));
    take(generic({frameA}));
    EXPECT_EQ(format().configuration, bytesOf("1208"));
    EXPECT_FALSE(describe("MPEG4-GENERIC/11111"));
}

TEST_F(AudioDepacketizerTest, AacHeadersHaveOtherFields)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/1",
                         "config=1408;sizelength=13;indexlength=3;indexdeltalength=3;"
                         "ctsdeltalength=4;randomaccessindication=1;auxiliarydatasizelength=8"));
    BitWriter headers;
    headers.bits(static_cast<uint32_t>(frameA.size()), 13).bits(0, 3);
    headers.bits(0, 1).bits(1, 1); // no CTS delta, random access
    headers.bits(static_cast<uint32_t>(frameB.size()), 13).bits(0, 3);
    headers.bits(1, 1).bits(5, 4).bits(0, 1);
    Bytes fields = headers.finish();
    fields.pop_back(); // nothing but the stop bit
    take(joined({{0, 40}, fields, {4, 0xf0}, frameA, frameB}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA, frameB}));
}

TEST_F(AudioDepacketizerTest, AacFramesOfOneSizeNeedNoHeaders)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/1",
                         "config=1408;constantsize=5;indexlength=0;indexdeltalength=0"));
    take(joined({frameA, frameA}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA, frameA}));
}

TEST_F(AudioDepacketizerTest, JoinsPartsOfAnAacFrame)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/1", "config=1408"));
    take(genericPart(7, {frameB.begin(), frameB.begin() + 3}), false);
    take(genericPart(7, {frameB.begin() + 3, frameB.end()}), true);
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameB}));
    // One with a hole is left out, and so is what never ends.
    takeNext(genericPart(7, {frameB.begin(), frameB.begin() + 3}), false);
    take(genericPart(7, {frameB.begin() + 5, frameB.end()}), true, true);
    takeNext(genericPart(7, {frameB.begin(), frameB.begin() + 3}), false);
    takeNext(generic({frameA}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameB, frameA}));
    EXPECT_EQ(m_client.damaged, 2);
}

TEST_F(AudioDepacketizerTest, StripsAdtsHeaders)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/1", "config=1408"));
    Bytes adts = bytesOf("fff16040"); // size in 13 bits behind
    const std::size_t size = 7 + frameA.size();
    adts.push_back(static_cast<uint8_t>(size >> 3));
    adts.push_back(static_cast<uint8_t>((size & 7) << 5 | 0x1f));
    adts.push_back(0xfc);
    take(generic({joined({adts, frameA})}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA}));
}

TEST_F(AudioDepacketizerTest, SkipsAacThatIsWrong)
{
    ASSERT_TRUE(describe("MPEG4-GENERIC/16000/1", "config=1408"));
    for (const char *hex : {"", "00", "0010", "001000", "ffff0028", "00000000", "0020002800ff01"})
        takeNext(bytesOf(hex));
    EXPECT_LE(m_client.pieces.size(), 1u);
    takeNext(generic({frameA}));
    EXPECT_EQ(m_client.pieces.back().payload, frameA);
}

TEST_F(AudioDepacketizerTest, UnpacksLatmThatIsDescribed)
{
    ASSERT_TRUE(describe("MP4A-LATM/44100/1", "cpresent=0;config=400024103fc0"));
    take(joined({{static_cast<uint8_t>(frameA.size())}, frameA}));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA}));
    EXPECT_EQ(format().codec, base::AudioCodec::Aac);
    EXPECT_EQ(format().rate, 44100);
    EXPECT_EQ(format().channels, 1);
    EXPECT_EQ(format().configuration, bytesOf("1208"));
    // In parts, and longer than one byte can tell
    const Bytes large(300, 0x21);
    takeNext(joined({{255, 45}, Bytes(100, 0x21)}), false);
    take(Bytes(200, 0x21), true);
    EXPECT_EQ(m_client.pieces.back().payload, large);
    // A marker that never comes
    takeNext(joined({{5}, frameA}), false);
    takeNext(joined({{7}, frameB}), false);
    EXPECT_EQ(m_client.pieces.back().payload, frameA);
    // A hole
    take({}, false, true);
    takeNext(joined({{5}, frameA}));
    EXPECT_EQ(m_client.pieces.size(), 4u);
    EXPECT_EQ(m_client.damaged, 1);
}

TEST_F(AudioDepacketizerTest, UnpacksLatmThatTellsItsConfiguration)
{
    ASSERT_TRUE(describe("MP4A-LATM/90000", "cpresent=1"));
    const auto element = [](bool told) {
        BitWriter writer;
        writer.bits(told ? 0 : 1, 1);
        if (told) {
            // StreamMuxConfig: one program, one layer, AAC-LC 16000 Hz mono, no other data
            writer.bits(0, 1).bits(1, 1).bits(0, 6).bits(0, 4).bits(0, 3);
            writer.bits(0x1408, 16).bits(0, 3).bits(0xff, 8).bits(0, 1).bits(0, 1);
        }
        writer.bits(static_cast<uint32_t>(frameA.size()), 8);
        for (const uint8_t byte : frameA)
            writer.bits(byte, 8);
        return writer.finish();
    };
    take(element(false)); // not known yet
    EXPECT_TRUE(m_client.pieces.empty());
    takeNext(element(true));
    takeNext(element(false));
    EXPECT_EQ(payloads(), std::vector<Bytes>({frameA, frameA}));
    EXPECT_EQ(format().rate, 16000);
    EXPECT_EQ(format().configuration, bytesOf("1408"));
}

TEST(AacConfig, ReadsWhatCamerasSend)
{
    const auto rateOf = [](const char *hex) {
        const std::optional<AacConfig> config = parseAacConfig(bytesOf(hex));
        return config ? config->rate * 10 + config->channels : 0;
    };
    EXPECT_EQ(rateOf("1210"), 441002);
    EXPECT_EQ(rateOf("1588"), 80001);
    EXPECT_EQ(rateOf("2b920800"), 220502); // with its extension, of 44100 Hz
    EXPECT_EQ(rateOf("1781f4008800"), 0);  // cut short of a program
    EXPECT_EQ(rateOf(""), 0);
    EXPECT_EQ(rateOf("14"), 0);
    EXPECT_EQ(rateOf("0000"), 0);
    EXPECT_EQ(rateOf("1688"), 0); // a rate that is reserved
    EXPECT_FALSE(makeAacConfig(8000, 0));
    EXPECT_FALSE(makeAacConfig(8001, 1));
    EXPECT_EQ(makeAacConfig(48000, 6), bytesOf("11b0"));
    EXPECT_EQ(decodeHex("1A2b3"), bytesOf("1a2b30"));
    EXPECT_TRUE(decodeHex("12 4").empty());
}

} // namespace rtsp
