#include "platform/media/clip_room.h"

#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <fstream>
#include <mutex>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string contents(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void save(const std::string &path, const std::string &bytes)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string number(uint64_t value, int bytes)
{
    std::string text;
    for (int i = bytes - 1; i >= 0; --i)
        text += static_cast<char>(value >> (8 * i));
    return text;
}

std::string box(const std::string &kind, const std::string &content)
{
    return number(8 + content.size(), 4) + kind + content;
}

/// The same with a head for sizes over 4 GB.
std::string longBox(const std::string &kind, const std::string &content)
{
    return number(1, 4) + kind + number(16 + content.size(), 8) + content;
}

std::string index(const std::string &table, int entryBytes, const std::vector<uint64_t> &places)
{
    std::string content = number(0, 4) + number(places.size(), 4);
    for (const uint64_t place : places)
        content += number(place, entryBytes);
    const std::string tables = box("stbl", box("stsz", "size") + box(table, content));
    return box("moov", box("mvhd", "head") + box("trak", box("mdia", box("minf", tables))));
}

const std::string type = box("ftyp", "isom");

/// A clip whose two pieces of pictures begin at the places that its index names.
std::string clip(const std::string &table, int entryBytes, size_t room, const std::string &pictures,
                 bool longHead = false)
{
    const std::string space = room == 0 ? "" : box("free", std::string(room - 8, '\0'));
    const uint64_t start = type.size() + index(table, entryBytes, {0, 0}).size() + room;
    const uint64_t first = start + (longHead ? 16 : 8);
    return type + index(table, entryBytes, {first, first + pictures.size() / 2}) + space +
           (longHead ? longBox("mdat", pictures) : box("mdat", pictures));
}

class ClipRoom : public testing::Test
{
protected:
    size_t filesInFolder() const
    {
        const std::filesystem::directory_iterator all(m_folder.path());
        return static_cast<size_t>(std::distance(begin(all), end(all)));
    }

    /// The file is as it was, and there is no other file next to it.
    void expectUntouched(const std::string &bytes)
    {
        save(m_path, bytes);
        media::giveBackIndexRoom(m_path);
        EXPECT_EQ(contents(m_path), bytes);
        EXPECT_EQ(filesInFolder(), 1u);
    }

    TemporaryFolder m_folder;
    const std::string m_path = m_folder.file("20240305_070809.mp4");
};

/// Two seconds with sound, and room for an index of a hundred.
void recordClip(const std::string &path)
{
    gst_init(nullptr, nullptr);
    const std::string chain =
        "videotestsrc num-buffers=50 ! video/x-raw,width=320,height=240,framerate=25/1 ! x264enc"
        " tune=zerolatency key-int-max=25 ! h264parse ! mp4mux name=mux"
        " reserved-max-duration=100000000000 reserved-moov-update-period=1000000000"
        " ! filesink location=" +
        path + " audiotestsrc num-buffers=80 ! avenc_aac ! mux.";
    GstElement *pipeline = gst_parse_launch(chain.c_str(), nullptr);
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus *bus = gst_element_get_bus(pipeline);
    GstMessage *end = gst_bus_timed_pop_filtered(bus, GST_CLOCK_TIME_NONE, GST_MESSAGE_EOS);
    gst_message_unref(end);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
}

} // namespace

TEST_F(ClipRoom, WhatARecorderWroteStaysTheSameButForItsRoom)
{
    recordClip(m_path);
    const std::string copy = m_folder.file("copy.mp4");
    std::filesystem::copy_file(m_path, copy);
    media::giveBackIndexRoom(m_path);

    EXPECT_LT(std::filesystem::file_size(m_path), std::filesystem::file_size(copy) - 200'000);
    EXPECT_EQ(filesInFolder(), 2u);
    EXPECT_EQ(MediaProbe::packets(m_path), MediaProbe::packets(copy));
    EXPECT_EQ(MediaProbe::decodedFrames(m_path), 50);
    EXPECT_EQ(MediaProbe::complaints(m_path), "");
    EXPECT_EQ(MediaProbe::codecs(m_path), "h264 aac");
    EXPECT_TRUE(MediaProbe::indexFirst(m_path));
    EXPECT_TRUE(MediaProbe::discover(m_path).seekable);
}

TEST_F(ClipRoom, EachSizeOfPlacesAndOfHeadsIsMoved)
{
    const std::string pictures = "first piece.second piece";
    for (const bool longHead : {false, true}) {
        for (const auto &[table, bytes] : {std::pair{"stco", 4}, std::pair{"co64", 8}}) {
            save(m_path, clip(table, bytes, 5000, pictures, longHead));
            media::giveBackIndexRoom(m_path);
            EXPECT_EQ(contents(m_path), clip(table, bytes, 0, pictures, longHead)) << table;
        }
    }
}

TEST_F(ClipRoom, SmallRoomIsNotWorthACopy)
{
    expectUntouched(clip("stco", 4, 100, std::string(10'000, 'p')));
}

TEST_F(ClipRoom, FileOfAnotherLayoutStays)
{
    const std::string good = clip("stco", 4, 5000, "pictures");
    const std::string room = box("free", std::string(5000, '\0'));
    expectUntouched("");
    expectUntouched("no video at all");
    expectUntouched(type);
    expectUntouched(type + room);
    expectUntouched(type + box("mdat", "pictures") + room + index("stco", 4, {20}));
    expectUntouched(type + index("stco", 4, {6000}) + room + box("mdat", "p") + box("mdat", "p"));
    expectUntouched(type + index("stco", 4, {6000}) + room + box("moof", "fragment"));
    expectUntouched(good.substr(0, good.size() - 3));
    expectUntouched(good.substr(0, type.size() + 20));
    // Places that cannot be moved: before the pictures, or more than there is room for.
    expectUntouched(type + index("stco", 4, {1, 2}) + room + box("mdat", "pictures"));
    expectUntouched(type + box("moov", box("trak", box("stco", number(0, 4) + number(9, 4)))) +
                    room + box("mdat", "pictures"));
    expectUntouched(type + box("moov", box("trak", "short")) + room + box("mdat", "pictures"));
}

TEST_F(ClipRoom, WrongBytesInTheIndexDoNoHarm)
{
    const std::string good = clip("stco", 4, 5000, "pictures");
    std::mt19937 random(20240305);
    for (int round = 0; round < 500; ++round) {
        std::string bad = good;
        for (int i = 0; i < 3; ++i)
            bad[random() % (type.size() + 100)] = static_cast<char>(random());
        save(m_path, bad);
        media::giveBackIndexRoom(m_path);
        EXPECT_EQ(filesInFolder(), 1u);
        EXPECT_TRUE(contents(m_path).ends_with("pictures"));
    }
}

TEST_F(ClipRoom, DiskThatIsFullKeepsTheFileAsItIs)
{
    const std::string bytes = clip("stco", 4, 500'000, std::string(1'000'000, 'p'));
    const auto old = signal(SIGXFSZ, SIG_IGN);
    save(m_path, bytes);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limited = before;
    limited.rlim_cur = 300'000;
    setrlimit(RLIMIT_FSIZE, &limited);
    media::giveBackIndexRoom(m_path);
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, old);
    EXPECT_EQ(contents(m_path), bytes);
    EXPECT_EQ(filesInFolder(), 1u);
}

TEST_F(ClipRoom, KillAtAnyMomentLeavesOneFileOrTheOther)
{
    const std::string pictures(20'000'000, 'p');
    const std::string before = clip("stco", 4, 5'000'000, pictures);
    const std::string after = clip("stco", 4, 0, pictures);
    std::mutex mutex;
    std::condition_variable never;
    for (int round = 0; round < 12; ++round) {
        save(m_path, before);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            media::giveBackIndexRoom(m_path);
            _exit(0);
        }
        std::unique_lock lock(mutex);
        never.wait_for(lock, std::chrono::milliseconds(round * 5));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::string found = contents(m_path);
        EXPECT_TRUE(found == before || found == after) << round;
    }
}
