#include "platform/media/audio_output.h"
#include "tests/platform/cammgr/stream_listener.h"

#include <gtest/gtest.h>

#include <atomic>

using namespace media;

namespace {

/// What a sound device got. Shared with it: a device is released behind the back of the test.
struct Ear
{
    std::atomic<int> heard = 0;
    std::atomic<int> loudest = 0;
};

class AudioOutputTest : public testing::Test
{
protected:
    void SetUp() override { gst_init(nullptr, nullptr); }
    void TearDown() override { m_output->close(); }

    GstElement *makeSink()
    {
        ++m_sinksMade;
        if (m_deviceMissing)
            return nullptr;
        GstElement *sink = gst_element_factory_make("fakesink", nullptr);
        g_object_set(sink, "signal-handoffs", TRUE, "sync", FALSE, nullptr);
        g_signal_connect_data(
            sink, "handoff", G_CALLBACK(&AudioOutputTest::heard), new std::shared_ptr<Ear>(m_ear),
            [](gpointer ear, GClosure *) { delete static_cast<std::shared_ptr<Ear> *>(ear); },
            GConnectFlags(0));
        return sink;
    }
    static void heard(GstElement *, GstBuffer *buffer, GstPad *, gpointer data)
    {
        const auto &ear = *static_cast<std::shared_ptr<Ear> *>(data);
        GstMapInfo map;
        gst_buffer_map(buffer, &map, GST_MAP_READ);
        int loudest = 0;
        for (gsize i = 0; i + 1 < map.size; i += 2)
            loudest = std::max(loudest,
                               std::abs(static_cast<gint16>(map.data[i] | map.data[i + 1] << 8)));
        gst_buffer_unmap(buffer, &map);
        ear->loudest = loudest;
        ++ear->heard;
    }
    /// 20 ms of G.711 at about a quarter of full scale.
    void feed()
    {
        GstBuffer *buffer = gst_buffer_new_allocate(nullptr, 160, nullptr);
        gst_buffer_memset(buffer, 0, 0x9f, 160);
        m_output->takeAudio({media::BufferRef::adopt(buffer), m_caps, 0});
    }
    bool feedUntil(const std::function<bool()> &condition)
    {
        return waitUntil([&] {
            feed();
            return condition();
        });
    }

    std::atomic<int> m_sinksMade = 0;
    const std::shared_ptr<Ear> m_ear = std::make_shared<Ear>();
    std::atomic<bool> m_deviceMissing = false;
    media::CapsRef m_caps = [] {
        gst_init(nullptr, nullptr);
        return media::CapsRef::adopt(gst_caps_from_string("audio/x-mulaw,rate=8000,channels=1"));
    }();
    std::shared_ptr<media::AudioOutput> m_output =
        std::make_shared<media::AudioOutput>([this] { return makeSink(); });
};

} // namespace

TEST_F(AudioOutputTest, SilentStreamOpensNoDevice)
{
    m_output->setVolume(0);
    for (int i = 0; i < 50; ++i)
        feed();
    EXPECT_FALSE(waitUntil([this] { return m_sinksMade > 0; }, 200ms));
}

TEST_F(AudioOutputTest, VolumeIsPercentOfTheSource)
{
    m_output->setVolume(100);
    ASSERT_TRUE(feedUntil([this] { return m_ear->heard > 0 && m_ear->loudest > 0; }));
    const int level = m_ear->loudest;
    m_output->setVolume(200);
    EXPECT_TRUE(feedUntil([&] { return std::abs(m_ear->loudest - 2 * level) <= 2; }))
        << m_ear->loudest;
    m_output->setVolume(50);
    EXPECT_TRUE(feedUntil([&] { return std::abs(m_ear->loudest - level / 2) <= 2; }))
        << m_ear->loudest;
    EXPECT_EQ(m_sinksMade, 1);
}

TEST_F(AudioOutputTest, DeviceIsReleasedWhenSilentAndBackWhenNot)
{
    m_output->setVolume(100);
    ASSERT_TRUE(feedUntil([this] { return m_ear->heard > 0; }));
    m_output->setVolume(0);
    feed();
    const int made = m_sinksMade;
    m_output->setVolume(80);
    EXPECT_TRUE(feedUntil([&] { return m_sinksMade > made; }));
    const int heard = m_ear->heard;
    EXPECT_TRUE(feedUntil([&] { return m_ear->heard > heard; }));
}

TEST_F(AudioOutputTest, MissingDeviceIsNotTriedForEachPacket)
{
    m_deviceMissing = true;
    m_output->setVolume(100);
    ASSERT_TRUE(feedUntil([this] { return m_sinksMade > 0; }));
    EXPECT_FALSE(waitUntil(
        [this] {
            feed();
            return m_sinksMade > 1;
        },
        500ms));
    EXPECT_EQ(m_ear->heard, 0);
}

TEST_F(AudioOutputTest, NothingIsPlayedAfterClose)
{
    m_output->setVolume(100);
    ASSERT_TRUE(feedUntil([this] { return m_ear->heard > 0; }));
    m_output->close();
    feed();
    EXPECT_FALSE(waitUntil(
        [this, before = m_sinksMade.load()] {
            feed();
            return m_sinksMade > before;
        },
        200ms));
}
