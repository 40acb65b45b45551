#include "camsim/camsim_process.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A process that records, started and killed by this test.
class RecordingChild
{
public:
    RecordingChild(const zelvaro::test::SimulatedCamera &camera, const std::string &base)
    {
        int output[2];
        if (pipe(output) != 0)
            return;
        m_pid = fork();
        if (m_pid == 0) {
            dup2(output[1], STDOUT_FILENO);
            execl(RECORDING_CHILD, RECORDING_CHILD, camera.mainUrl.c_str(), camera.user.c_str(),
                  camera.password.c_str(), base.c_str(), nullptr);
            _exit(127);
        }
        close(output[1]);
        m_output = output[0];
    }
    ~RecordingChild()
    {
        kill();
        close(m_output);
    }
    RecordingChild(const RecordingChild &) = delete;
    RecordingChild &operator=(const RecordingChild &) = delete;

    /// Returns when it says that it records; false when it ended instead.
    bool waitUntilWriting()
    {
        char text[8];
        return read(m_output, text, sizeof text) == sizeof text;
    }
    void kill()
    {
        if (m_pid <= 0)
            return;
        ::kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }

private:
    pid_t m_pid = -1;
    int m_output = -1;
};

} // namespace

TEST(RecordingKill, WhatIsOnTheDiskPlaysAndSeeksEverywhere)
{
    zelvaro::test::CamsimProcess camsim({"--warm", "--key-interval", "2"});
    gst_init(nullptr, nullptr);
    for (const double length : {1.0, 2.5, 6.0}) {
        TemporaryFolder folder;
        const auto path = folder.file("a.mp4");
        RecordingChild child(camsim.camera(), folder.file("a"));
        ASSERT_TRUE(child.waitUntilWriting());
        // Other players see it grow. How far it is behind the camera is measured, not tested: a
        // busy machine takes its time.
        ASSERT_TRUE(waitUntil([&] { return MediaProbe::duration(path) >= length; }, 60s));
        child.kill();
        const double found = MediaProbe::duration(path);
        EXPECT_GE(found, length);
        const auto times = MediaProbe::videoTimes(path);
        ASSERT_GT(times.size(), 5u);
        for (size_t i = 1; i < times.size(); ++i)
            EXPECT_GT(times[i], times[i - 1]) << i;
        // A camera on a busy machine may leave pictures out, and others with them.
        EXPECT_GT(MediaProbe::decodedFrames(path), 5);
        EXPECT_EQ(MediaProbe::complaints(path), "");
        const auto seen = MediaProbe::discover(path);
        EXPECT_TRUE(seen.video);
        EXPECT_TRUE(seen.seekable);
        EXPECT_NEAR(seen.duration, found, 0.2);
        EXPECT_TRUE(MediaProbe::codecs(path).starts_with("h264"));
    }
}
