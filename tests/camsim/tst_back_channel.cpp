#include "camsim/camsim_process.h"
#include "tests/camsim/peer.h"

#include "camsim/tone.h"

#include <gst/gst.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <string>

using namespace camsim::test;
using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

namespace {

/// Talks to a camera through the framework's own RTSP client.
class Talker
{
public:
    explicit Talker(const SimulatedCamera &camera)
    {
        gst_init(nullptr, nullptr);
        m_source = gst_element_factory_make("rtspsrc", nullptr);
        g_object_set(m_source, "location", camera.subUrl.c_str(), "user-id", camera.user.c_str(),
                     "user-pw", camera.password.c_str(), nullptr);
        gst_util_set_object_arg(G_OBJECT(m_source), "protocols", "tcp");
        gst_util_set_object_arg(G_OBJECT(m_source), "backchannel", "onvif");
        g_signal_connect(m_source, "select-stream", G_CALLBACK(select), this);
        m_pipeline = gst_pipeline_new(nullptr);
        gst_bin_add(GST_BIN(m_pipeline), m_source);
        gst_element_set_state(m_pipeline, GST_STATE_PLAYING);
    }
    ~Talker()
    {
        gst_element_set_state(m_pipeline, GST_STATE_NULL);
        gst_object_unref(m_pipeline);
    }
    Talker(const Talker &) = delete;
    Talker &operator=(const Talker &) = delete;

    bool isReady() const { return m_stream >= 0; }
    /// 20 ms of a tone at a tenth of full scale; true when the client took it.
    bool say()
    {
        GstBuffer *packet = gst_buffer_new_allocate(nullptr, 12 + 160, nullptr);
        GstMapInfo map;
        gst_buffer_map(packet, &map, GST_MAP_WRITE);
        const guint16 sequence = m_sequence++;
        const guint32 time = sequence * 160U;
        const guint8 head[12] = {0x80,
                                 0,
                                 guint8(sequence >> 8),
                                 guint8(sequence),
                                 guint8(time >> 24),
                                 guint8(time >> 16),
                                 guint8(time >> 8),
                                 guint8(time),
                                 1,
                                 2,
                                 3,
                                 4};
        std::copy(std::begin(head), std::end(head), map.data);
        for (int i = 0; i < 160; ++i)
            map.data[12 + i] = camsim::encodeMuLaw(static_cast<int>(3277 * std::sin(i * 0.3)));
        gst_buffer_unmap(packet, &map);
        GstSample *sample = gst_sample_new(packet, nullptr, nullptr, nullptr);
        gst_buffer_unref(packet);
        GstFlowReturn taken = GST_FLOW_ERROR;
        // Takes over the sample.
        g_signal_emit_by_name(m_source, "push-backchannel-buffer", guint(m_stream), sample, &taken);
        return taken == GST_FLOW_OK;
    }

private:
    static gboolean select(GstElement *, guint number, GstCaps *caps, Talker *self)
    {
        const bool isBackChannel =
            gst_structure_has_field(gst_caps_get_structure(caps, 0), "a-sendonly");
        if (isBackChannel)
            self->m_stream = static_cast<int>(number);
        return isBackChannel;
    }

    GstElement *m_pipeline = nullptr;
    GstElement *m_source = nullptr;
    std::atomic<int> m_stream{-1};
    guint16 m_sequence = 0;
};

} // namespace

TEST(BackChannel, TheCameraHearsWhatIsSaid)
{
    CamsimProcess camsim;
    Talker talker(camsim.camera());
    ASSERT_TRUE(eventually([&] { return talker.isReady() && talker.say(); }));
    EXPECT_TRUE(eventually([&] {
        talker.say();
        return camsim.statusNumber("back_channel_packets") >= 20;
    }));
    const auto status = camsim.status();
    EXPECT_EQ(std::stol(status.at("back_channel_bytes")),
              160 * std::stol(status.at("back_channel_packets")));
    // A sine of a tenth of full scale.
    EXPECT_NEAR(std::stod(status.at("back_channel_level")), 0.1 / std::sqrt(2.0), 0.01);
}

TEST(BackChannel, ACameraWithoutOneRefuses)
{
    const CamsimProcess camsim({"--no-back-channel"});
    const SimulatedCamera &camera = camsim.camera();
    RawRtsp client(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                   camera.password);
    EXPECT_TRUE(client.ask("DESCRIBE", "Require: www.onvif.org/ver20/backchannel\r\n")
                    .starts_with("RTSP/1.0 551"));
    EXPECT_TRUE(client.ask("DESCRIBE").starts_with("RTSP/1.0 200"));
}

TEST(BackChannel, ItIsOfferedOnlyToThoseWhoAsk)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    const auto describe = [&camera](const std::string &headers) {
        return RawRtsp(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                       camera.password)
            .ask("DESCRIBE", headers);
    };
    EXPECT_EQ(describe("").find("a=sendonly"), std::string::npos);
    const std::string answer = describe("Require: www.onvif.org/ver20/backchannel\r\n");
    EXPECT_NE(answer.find("a=sendonly"), std::string::npos) << answer;
}
