#include "camsim/timecode.h"

#include "camsim/encoder.h"
#include "camsim/scene.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

using namespace camsim;

namespace {

/// A picture in memory with the planes that the scene draws into.
struct Picture
{
    Picture(int width, int height)
        : luma(static_cast<std::size_t>(width * height), 90)
        , cb(luma.size() / 4, 128)
        , cr(luma.size() / 4, 128)
        , view{width, height, luma.data(), cb.data(), cr.data(), width, width / 2}
    {
    }

    std::vector<std::uint8_t> luma, cb, cr;
    PictureView view;
};

void drawCode(Picture &picture, std::uint32_t ms)
{
    const PictureView &v = picture.view;
    timecode::draw(v.luma, v.lumaStride, v.cb, v.cr, v.chromaStride, v.width, v.height, ms);
}

/// Averages squares of factor by factor pixels, as a scaler does.
std::vector<std::uint8_t> shrink(const Picture &picture, int factor)
{
    const int width = picture.view.width / factor;
    const int height = picture.view.height / factor;
    std::vector<std::uint8_t> small(static_cast<std::size_t>(width * height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            int sum = 0;
            for (int part = 0; part < factor * factor; ++part) {
                const int px = x * factor + part % factor;
                const int py = y * factor + part / factor;
                sum += picture.luma[static_cast<std::size_t>(py * picture.view.width + px)];
            }
            small[static_cast<std::size_t>(y * width + x)] =
                static_cast<std::uint8_t>(sum / (factor * factor));
        }
    }
    return small;
}

} // namespace

TEST(Timecode, EveryTimeComesBack)
{
    for (const std::uint32_t ms : {0U, 1U, 999U, 123'456U, 0xAAAAAAU, 0x555555U, 0xFFFFFFU})
        EXPECT_EQ(timecode::decode(timecode::encode(ms)), ms);
}

TEST(Timecode, AnyWrongBitIsNoticed)
{
    const std::uint32_t word = timecode::encode(7'654'321);
    for (int bit = 0; bit < 32; ++bit)
        EXPECT_FALSE(timecode::decode(word ^ 1U << bit)) << "bit " << bit;
}

TEST(Timecode, ElapsedTimeGoesAcrossTheWrapAround)
{
    EXPECT_EQ(timecode::elapsed(1000, 1040), 40U);
    EXPECT_EQ(timecode::elapsed(timecode::modulus - 10, 30), 40U);
}

TEST(Timecode, ReadsAPictureOfEachSize)
{
    for (const auto &[width, height] :
         {std::pair{320, 180}, {640, 360}, {1280, 720}, {1920, 1080}}) {
        Picture picture(width, height);
        drawCode(picture, 1'234'567);
        EXPECT_EQ(timecode::readLuma(picture.luma.data(), width, width, height), 1'234'567U)
            << width << "x" << height;
    }
}

TEST(Timecode, ReadsAPictureShownAtHalfSize)
{
    for (const auto &[width, height] : {std::pair{640, 360}, {1280, 720}}) {
        Picture picture(width, height);
        drawCode(picture, 7'777'777);
        const std::vector<std::uint8_t> half = shrink(picture, 2);
        EXPECT_EQ(timecode::readLuma(half.data(), width / 2, width / 2, height / 2), 7'777'777U);
    }
}

TEST(Timecode, ReadsScreenPixels)
{
    Picture picture(640, 360);
    drawCode(picture, 42);
    std::vector<std::uint8_t> screen;
    for (const std::uint8_t luma : picture.luma) {
        const auto grey = static_cast<std::uint8_t>(std::min(255, (luma - 16) * 255 / 219));
        screen.insert(screen.end(), {grey, grey, grey, 0});
    }
    EXPECT_EQ(timecode::readRgb(screen.data(), 640 * 4, 4, 640, 360), 42U);
}

TEST(Timecode, APictureWithoutCodeOrTooSmallGivesNothing)
{
    const Picture plain(640, 360);
    std::vector<std::uint8_t> noise(plain.luma.size());
    for (std::uint8_t &pixel : noise)
        pixel = static_cast<std::uint8_t>(std::rand());
    noise[0] = 0;
    EXPECT_FALSE(timecode::readLuma(plain.luma.data(), 640, 40, 40));
    EXPECT_FALSE(timecode::readLuma(noise.data(), 640, 0, 0));
}

TEST(Timecode, SurvivesTheEncoderAtTheRateOfTheSubStream)
{
    gst_init(nullptr, nullptr);
    GstElement *decoder = gst_parse_launch(
        "appsrc name=in format=time caps=video/x-h264,stream-format=byte-stream,alignment=au "
        "! avdec_h264 max-threads=1 ! videoconvert ! video/x-raw,format=GRAY8 "
        "! appsink name=out sync=false",
        nullptr);
    ASSERT_NE(decoder, nullptr);
    GstElement *in = gst_bin_get_by_name(GST_BIN(decoder), "in");
    GstElement *out = gst_bin_get_by_name(GST_BIN(decoder), "out");
    gst_element_set_state(decoder, GST_STATE_PLAYING);

    constexpr int frames = 45;
    constexpr std::uint32_t step = 67;
    Scene scene(1, "Time code", 640, 360, true);
    Encoder encoder(VideoSettings{}, [in](GstBuffer *unit, bool) {
        gst_app_src_push_buffer(GST_APP_SRC(in), gst_buffer_ref(unit));
    });
    ASSERT_TRUE(encoder.isUsable());
    for (std::uint32_t frame = 0; frame < frames; ++frame) {
        encoder.encode([&](const PictureView &view) {
            scene.draw(view, frame / 15.0, 1'534'155'630, 5'000'000 + frame * step);
        });
    }
    encoder.finish();
    gst_app_src_end_of_stream(GST_APP_SRC(in));

    std::uint32_t frame = 0;
    while (GstSample *sample = gst_app_sink_try_pull_sample(GST_APP_SINK(out), 20 * GST_SECOND)) {
        GstMapInfo map;
        ASSERT_TRUE(gst_buffer_map(gst_sample_get_buffer(sample), &map, GST_MAP_READ));
        EXPECT_EQ(timecode::readLuma(map.data, 640, 640, 360), 5'000'000 + frame * step)
            << "frame " << frame;
        gst_buffer_unmap(gst_sample_get_buffer(sample), &map);
        gst_sample_unref(sample);
        ++frame;
    }
    EXPECT_EQ(frame, std::uint32_t{frames});
    gst_element_set_state(decoder, GST_STATE_NULL);
    gst_object_unref(in);
    gst_object_unref(out);
    gst_object_unref(decoder);
}
