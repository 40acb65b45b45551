#include "platform/cammgr/live_stream.h"
#include "platform/media/clip_names.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/temporary_folder.h"
#include "tests/platform/rtsp/camera_case.h"
#include "tests/platform/rtsp/viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

using rtsp::StreamEnd;

namespace {

constexpr const char *watchedPictures = "45"; // more than two rounds of the clip

const std::map<std::string, StreamEnd> ends = {{"NotFound", StreamEnd::NotFound},
                                               {"PathRefused", StreamEnd::PathRefused},
                                               {"NoVideo", StreamEnd::NoVideo},
                                               {"UnknownCodec", StreamEnd::UnknownCodec}};

class CameraCases : public testing::TestWithParam<CameraCase>
{
protected:
    static size_t firstShown()
    {
        return static_cast<size_t>(std::stoi(GetParam().key("first-shown", "0")));
    }

    static rtsp::StreamRequest request(const CaseCamera &camera)
    {
        return {.url = camera.url(),
                .username = GetParam().key("user"),
                .password = GetParam().key("password")};
    }

    /// Each picture of the clip, one after the other, from where the camera began.
    static void judgePictures(const std::vector<base::AccessUnit> &units, const CaseClip &clip)
    {
        const size_t count = clip.pictures.size();
        for (size_t i = 0; i < units.size(); ++i) {
            EXPECT_EQ(units[i].number, i + 1);
            if (clip.kind == CaseClip::Kind::Jpeg)
                continue;
            const size_t expected = (firstShown() + i) % count;
            ASSERT_EQ(clip.find(*units[i].payload), static_cast<int>(expected)) << "frame " << i;
            EXPECT_EQ(units[i].key, clip.pictures[expected].key) << "frame " << i;
        }
    }

    /// The times grow with the places of the pictures in the order of presentation.
    static void judgeTimes(const std::vector<base::AccessUnit> &units, const CaseClip &clip)
    {
        if (GetParam().key("times") == "equal")
            return;
        const size_t count = clip.pictures.size();
        std::map<size_t, uint64_t> times;
        for (size_t i = 0; i < units.size(); ++i) {
            const size_t at = firstShown() + i;
            times[at / count * count + clip.pictures[at % count].shown] = units[i].time;
        }
        constexpr uint64_t period = 20'000'000;
        constexpr uint64_t rounding = 1'000;
        for (auto next = std::next(times.begin()); next != times.end(); ++next) {
            const auto before = std::prev(next);
            const uint64_t distance = (next->first - before->first) * period;
            EXPECT_NEAR(static_cast<double>(next->second - before->second),
                        static_cast<double>(distance), rounding)
                << "before picture " << next->first;
        }
    }

    static void judgeSession(const ScriptedCamera &camera)
    {
        const std::string whole = GetParam().key("session", "12345678");
        const std::string id = GetParam().key("session-id", whole.substr(0, whole.find(';')));
        std::map<int, bool> hasSession; // by connection
        for (const ScriptedCamera::Request &request : camera.requests()) {
            // An answer that refuses a SETUP brings no session.
            const bool mustHave = request.method == "PLAY" || request.method == "TEARDOWN" ||
                                  request.method == "GET_PARAMETER" ||
                                  hasSession[request.connection];
            if (mustHave)
                EXPECT_EQ(request.header("session"), id) << request.text;
            hasSession[request.connection] = !request.header("session").empty();
        }
    }
};

std::string nameOf(const testing::TestParamInfo<CameraCase> &info)
{
    std::string name;
    bool begins = true;
    for (const char c : info.param.name) {
        if (c != '-')
            name += begins ? static_cast<char>(std::toupper(c)) : c;
        begins = c == '-';
    }
    return name;
}

} // namespace

TEST_P(CameraCases, EachPictureArrivesInItsPlace)
{
    const CameraCase &text = GetParam();
    CaseCamera camera(text, CAMERA_CASES);
    Viewer viewer(request(camera));
    viewer.start();
    if (!text.plays()) {
        EXPECT_EQ(viewer.waitForEnd(), ends.at(text.key("ends"))) << viewer.text();
        EXPECT_THAT(viewer.text(), testing::HasSubstr(text.key("says")));
        EXPECT_EQ(viewer.frames(), 0);
        EXPECT_THAT(camera.sent(), testing::ElementsAreArray(text.sends()));
        return;
    }
    ASSERT_TRUE(viewer.waitForFrames(std::stoi(text.key("pictures", watchedPictures))))
        << viewer.text();
    viewer.close();
    ASSERT_TRUE(camera.camera().waitFor([&] { return camera.camera().openConnections() == 0; }));
    judgePictures(viewer.units(), camera.clip());
    judgeTimes(viewer.units(), camera.clip());
    judgeSession(camera.camera());
    EXPECT_EQ(viewer.sounds() > 0, text.key("hears", "no") == "yes");
    EXPECT_EQ(viewer.ends(), 0);
    EXPECT_THAT(camera.sent(), testing::ElementsAreArray(text.sends()));
}

TEST_P(CameraCases, IsRecorded)
{
    const CameraCase &text = GetParam();
    if (!text.plays())
        return; // there is nothing to record
    CaseCamera camera(text, CAMERA_CASES);
    TemporaryFolder folder;
    StreamListener listener;
    auto stream = std::make_unique<cammgr::LiveStream>(listener.callbacks());
    stream->setVolume(0);
    stream->start({.source = request(camera)});
    ASSERT_TRUE(listener.waitForFirstFrame());
    EXPECT_EQ(stream->width(), 160);
    EXPECT_EQ(stream->height(), 96);
    ASSERT_EQ(stream->beginWriting(folder.file("clip"), 0), 0);
    const std::string clip = media::clipPath(folder.file("clip"), 1);
    EXPECT_TRUE(waitUntil(
        [&] { return std::filesystem::exists(clip) && MediaProbe::decodedFrames(clip) >= 40; }));
    EXPECT_TRUE(listener.ends().empty());
    stream.reset(); // which finishes the clip
    EXPECT_EQ(MediaProbe::codecs(clip), text.key("records", "h264"));
    EXPECT_EQ(MediaProbe::complaints(clip), "");
}

INSTANTIATE_TEST_SUITE_P(All, CameraCases, testing::ValuesIn(CameraCase::readAll(CAMERA_CASES)),
                         nameOf);

namespace {

/// What each case proves, for readers.
std::string table()
{
    std::string text =
        "# Cameras\n\nWhat cameras do that others do not, as tests play it: each line is a file "
        "under `tests/platform/rtsp/cameras`, from which a camera is simulated. \"Plays\" means "
        "that each of its pictures arrives whole and in its place; \"records\" names what the clip "
        "holds, in which another program finds no error. `tst_camera_cases` compares this page "
        "with the files; with `ZELVARO_WRITE_CAMERA_TABLE=1` it writes it.\n\n"
        "| The camera | Plays | Records | What is sent |\n|---|---|---|---|\n";
    for (const CameraCase &each : CameraCase::readAll(CAMERA_CASES)) {
        std::string sent;
        for (const std::string &request : each.sends())
            sent += (sent.empty() ? "`" : "`, `") + request;
        text += "| " + each.key("title") + " | " +
                (each.plays() ? "yes" : "no: " + each.key("says")) + " | " +
                (each.plays() ? each.key("records", "h264") : "") + " | " + sent + "` |\n";
    }
    return text;
}

} // namespace

TEST(CameraTable, TellsWhatTheCasesProve)
{
    const std::string expected = table();
    if (std::getenv("ZELVARO_WRITE_CAMERA_TABLE"))
        std::ofstream(CAMERA_TABLE) << expected;
    std::ifstream file(CAMERA_TABLE);
    const std::string written(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(written, expected);
}
