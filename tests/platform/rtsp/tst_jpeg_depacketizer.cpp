#include "platform/rtsp/jpeg_depacketizer.h"
#include "platform/rtsp/jpeg_tables.h"
#include "tests/platform/rtsp/support/rtp_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace rtsp {

namespace {

/// Of an encoder: 16x16, 4:2:0, quality 50.
const Bytes file = bytesOf(
    "ffd8ffe000104a46494600010100000100010000ffdb004300100b0c0e0c0a100e0d0e1211101318281a1816"
    "16183123251d283a333d3c3933383740485c4e404457453738506d51575f626768673e4d71797064785c6567"
    "63ffdb0043011112121815182f1a1a2f63423842636363636363636363636363636363636363636363636363"
    "6363636363636363636363636363636363636363636363636363ffc000110800100010030122000211010311"
    "01ffc4001f0000010501010101010100000000000000000102030405060708090a0bffc400b5100002010303"
    "020403050504040000017d01020300041105122131410613516107227114328191a1082342b1c11552d1f024"
    "33627282090a161718191a25262728292a3435363738393a434445464748494a535455565758595a63646566"
    "6768696a737475767778797a838485868788898a92939495969798999aa2a3a4a5a6a7a8a9aab2b3b4b5b6b7"
    "b8b9bac2c3c4c5c6c7c8c9cad2d3d4d5d6d7d8d9dae1e2e3e4e5e6e7e8e9eaf1f2f3f4f5f6f7f8f9faffc400"
    "1f0100030101010101010101010000000000000102030405060708090a0bffc400b511000201020404030407"
    "05040400010277000102031104052131061241510761711322328108144291a1b1c109233352f0156272d10a"
    "162434e125f11718191a262728292a35363738393a434445464748494a535455565758595a63646566676869"
    "6a737475767778797a82838485868788898a92939495969798999aa2a3a4a5a6a7a8a9aab2b3b4b5b6b7b8b9"
    "bac2c3c4c5c6c7c8c9cad2d3d4d5d6d7d8d9dae2e3e4e5e6e7e8e9eaf2f3f4f5f6f7f8f9faffda000c030100"
    "02110311003f00e66dac3a715a96da7f4e2b4ed6c3a715b16ba7f4e2b8233f6856031f6b6a7fffd9");

constexpr std::size_t scanBegin = 623;
const Bytes scan(file.begin() + scanBegin, file.end() - 2);
const Bytes tables = [] {
    const std::array<uint8_t, 128> both = jpegTablesOf(50);
    return Bytes(both.begin(), both.end());
}();

struct Options
{
    unsigned type = 1;
    unsigned quality = 50;
    unsigned width = 2; ///< in 8 pixels
    unsigned height = 2;
};

Bytes header(std::size_t offset, const Options &options)
{
    Bytes bytes = {0};
    append(bytes, offset, 3);
    for (const unsigned value : {options.type, options.quality, options.width, options.height})
        bytes.push_back(static_cast<uint8_t>(value));
    return bytes;
}

Bytes tableHeader(const Bytes &told, uint8_t precision = 0)
{
    Bytes bytes = {0, precision};
    append(bytes, told.size(), 2);
    append(bytes, told);
    return bytes;
}

class JpegDepacketizerTest : public testing::Test
{
protected:
    void take(const Bytes &payload, bool marker, bool afterGap = false)
    {
        m_depacketizer.take({payload, m_time, marker, afterGap, at(m_time / 90)});
    }
    void takeFrame(const Options &options = {}, const Bytes &more = {})
    {
        take(joined({header(0, options), more, scan}), true);
        m_time += 3600;
    }

    RecordingClient m_client;
    JpegDepacketizer m_depacketizer{m_client, 2560, 1440};
    uint32_t m_time = 0;
};

} // namespace

TEST_F(JpegDepacketizerTest, RebuildsTheFileOfTheEncoder)
{
    takeFrame();
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.frames[0].payload, file);
    EXPECT_TRUE(m_client.frames[0].key);
    EXPECT_FALSE(m_client.frames[0].reference);
    EXPECT_EQ(m_client.frames[0].format->codec, base::VideoCodec::Jpeg);
    EXPECT_EQ(m_client.frames[0].format->width, 16);
    EXPECT_EQ(m_client.frames[0].format->height, 16);
}

TEST_F(JpegDepacketizerTest, JoinsFragments)
{
    take(joined({header(0, {}), Bytes(scan.begin(), scan.begin() + 20)}), false);
    take(joined({header(20, {}), Bytes(scan.begin() + 20, scan.end())}), true);
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.frames[0].payload, file);
}

TEST_F(JpegDepacketizerTest, TakesTablesInBandAndKeepsThem)
{
    takeFrame({.quality = 200}, tableHeader(tables));
    takeFrame({.quality = 200}, tableHeader({}));
    takeFrame({.quality = 255}, tableHeader(tables));
    takeFrame({.quality = 255}, tableHeader({})); // has to tell them each time
    takeFrame({.quality = 201}, tableHeader({})); // never told
    ASSERT_EQ(m_client.frames.size(), 3u);
    for (const VideoFrame &frame : m_client.frames)
        EXPECT_EQ(frame.payload, file);
    EXPECT_EQ(m_client.damaged, 2);
    EXPECT_EQ(m_client.frames[0].format, m_client.frames[2].format);
}

TEST_F(JpegDepacketizerTest, TakesTablesOf16Bits)
{
    Bytes wide;
    for (const uint8_t value : tables)
        append(wide, value, 2);
    takeFrame({.quality = 255}, tableHeader(wide, 3));
    ASSERT_EQ(m_client.frames.size(), 1u);
    const Bytes &made = m_client.frames[0].payload;
    EXPECT_EQ(made.size(), file.size() + 128);
    EXPECT_EQ(Bytes(made.begin() + 20, made.begin() + 27), bytesOf("ffdb0083100010"));
}

TEST_F(JpegDepacketizerTest, WritesRestartIntervalsAndTheSampling)
{
    takeFrame({.type = 65}, bytesOf("0004ffff"));
    takeFrame({.type = 64}, bytesOf("0004ffff"));
    takeFrame({.type = 0});
    ASSERT_EQ(m_client.frames.size(), 3u);
    const Bytes interval = bytesOf("ffdd00040004");
    for (const VideoFrame &frame : m_client.frames) {
        const bool hasInterval =
            std::search(frame.payload.begin(), frame.payload.end(), interval.begin(),
                        interval.end()) != frame.payload.end();
        EXPECT_EQ(hasInterval, &frame != &m_client.frames[2]);
    }
    EXPECT_EQ(m_client.frames[0].payload.size(), file.size() + interval.size());
    EXPECT_EQ(m_client.frames[2].payload.size(), file.size());
    // The luma of type 0 is sampled twice as often across only.
    constexpr std::size_t lumaSampling = 20 + 2 * 69 + 11;
    EXPECT_EQ(file[lumaSampling], 0x22);
    EXPECT_EQ(m_client.frames[2].payload[lumaSampling], 0x21);
}

TEST_F(JpegDepacketizerTest, TakesTheSizeOfLargeFramesFromTheDescription)
{
    takeFrame({.width = 0, .height = 0});
    takeFrame({.width = 64, .height = 180}); // 2560 has wrapped to 512
    ASSERT_EQ(m_client.frames.size(), 2u);
    for (const VideoFrame &frame : m_client.frames) {
        EXPECT_EQ(frame.format->width, 2560);
        EXPECT_EQ(frame.format->height, 1440);
    }
    RecordingClient client;
    JpegDepacketizer unknown(client, 0, 0);
    unknown.take({joined({header(0, {.width = 0, .height = 0}), scan}), 0, true, false, at(0)});
    EXPECT_TRUE(client.frames.empty());
}

TEST_F(JpegDepacketizerTest, TakesWholeFiles)
{
    take(joined({header(0, {}), file}), true);
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.frames[0].payload, file);
}

TEST_F(JpegDepacketizerTest, FramesEndWithoutMarkers)
{
    for (int i = 0; i < 3; ++i) {
        take(joined({header(0, {}), Bytes(scan.begin(), scan.begin() + 20)}), false);
        take(joined({header(20, {}), Bytes(scan.begin() + 20, scan.end())}), false);
        m_time += i == 0 ? 3600 : 0; // then times stand still
    }
    ASSERT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(m_client.frames[0].payload, file);
    EXPECT_EQ(m_client.frames[0].time, 0u);
    EXPECT_EQ(m_client.frames[1].payload, file);
}

TEST_F(JpegDepacketizerTest, LeavesOutFramesWithAHole)
{
    take(joined({header(0, {}), Bytes(scan.begin(), scan.begin() + 10)}), false);
    take(joined({header(20, {}), Bytes(scan.begin() + 20, scan.end())}), true, true);
    m_time += 3600;
    take(joined({header(20, {}), Bytes(scan.begin() + 20, scan.end())}), true, true);
    m_time += 3600;
    take(joined({header(0, {}), Bytes(scan.begin(), scan.begin() + 20)}), false);
    m_time += 3600;
    take(joined({header(0, {}), scan}), true, true); // the end of the one before is missing
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.frames[0].payload, file);
    EXPECT_EQ(m_client.damaged, 3);
    EXPECT_EQ(m_client.referencesLost, 0);
}

TEST_F(JpegDepacketizerTest, SkipsWhatCannotBeDecoded)
{
    for (const char *hex : {"", "00", "00000000010002", "0000000041320202", "00000000014002",
                            "00000000018002020000ffff"})
        take(bytesOf(hex), true);
    takeFrame({.type = 2});
    takeFrame({.quality = 0});
    takeFrame({.quality = 255}, tableHeader(Bytes(63, 1)));
    takeFrame({.quality = 255}, tableHeader(Bytes(300, 1)));
    EXPECT_TRUE(m_client.frames.empty());
}

} // namespace rtsp
