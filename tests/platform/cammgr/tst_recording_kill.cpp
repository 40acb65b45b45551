#include "camsim/camsim_process.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <gtest/gtest.h>

TEST(RecordingKill, WhatIsOnTheDiskPlaysAndSeeksEverywhere)
{
    zelvaro::test::CamsimProcess camsim({"--warm", "--key-interval", "2"});
    gst_init(nullptr, nullptr);
    for (const double length : {1.0, 2.5, 6.0}) {
        TemporaryFolder folder;
        const auto path = folder.file("a.mp4");
        const zelvaro::test::SimulatedCamera &camera = camsim.camera();
        zelvaro::test::ChildProcess child(
            {RECORDING_CHILD, camera.mainUrl, camera.user, camera.password, folder.file("a")},
            {.readsOutput = true, .showsErrors = true});
        ASSERT_EQ(child.readLine(60s), "writing");
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
