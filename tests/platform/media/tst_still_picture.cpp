#include "platform/media/still_picture.h"
#include "tests/platform/cammgr/encoded_stream.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

using namespace media;
using namespace std::chrono_literals;

namespace {

std::string contentOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Width and height in the frame header of a JPEG file (ITU-T T.81 B.2.2).
std::pair<int, int> jpegSize(const std::string &jpeg)
{
    const auto byte = [&](size_t at) { return static_cast<unsigned char>(jpeg[at]); };
    for (size_t at = 2; at + 9 < jpeg.size();) {
        const int marker = byte(at + 1);
        if (marker >= 0xc0 && marker <= 0xc2)
            return {byte(at + 7) << 8 | byte(at + 8), byte(at + 5) << 8 | byte(at + 6)};
        at += 2 + (byte(at + 2) << 8 | byte(at + 3));
    }
    return {};
}

size_t filesIn(const std::string &folder)
{
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

} // namespace

TEST(StillPicture, IsTheLastPictureInTheStreamsOwnSize)
{
    TemporaryFolder folder;
    const auto units = EncodedStream::make({.frames = 20, .width = 640, .height = 360});
    const auto path = folder.file("20240305_070809.jpg");
    EXPECT_EQ(media::writeJpeg(media::decodeLast(units, 10s), path), 0);
    const std::string jpeg = contentOf(path);
    EXPECT_EQ(jpegSize(jpeg), (std::pair{640, 360}));
    EXPECT_EQ(jpeg.substr(jpeg.size() - 2), "\xff\xd9");
    EXPECT_EQ(filesIn(folder.path()), 1u);
}

TEST(StillPicture, ReplacesTheFileThatIsThere)
{
    TemporaryFolder folder;
    const auto path = folder.file("thumb.jpeg");
    std::ofstream(path) << "old";
    EXPECT_EQ(media::writeJpeg(media::decodeLast(EncodedStream::make({.frames = 1}), 10s), path),
              0);
    EXPECT_EQ(jpegSize(contentOf(path)), (std::pair{320, 240}));
    EXPECT_EQ(filesIn(folder.path()), 1u);
}

TEST(StillPicture, FolderThatIsMissingIsAnErrorAndLeavesNothing)
{
    TemporaryFolder folder;
    const auto picture = media::decodeLast(EncodedStream::make({.frames = 1}), 10s);
    EXPECT_LT(media::writeJpeg(picture, folder.file("missing/a.jpg")), 0);
    EXPECT_EQ(filesIn(folder.path()), 0u);
}

TEST(StillPicture, NoPictureIsAnErrorAndKeepsTheOldFile)
{
    TemporaryFolder folder;
    const auto path = folder.file("thumb.jpeg");
    std::ofstream(path) << "old";
    EXPECT_FALSE(media::decodeLast({}, 1s));
    EXPECT_LT(media::writeJpeg({}, path), 0);
    EXPECT_EQ(contentOf(path), "old");
}

TEST(StillPicture, UnitsThatDoNotDecodeGiveNone)
{
    auto units = EncodedStream::make({.frames = 3});
    for (media::AccessUnit &unit : units) {
        unit.buffer = media::BufferRef::adopt(gst_buffer_new_allocate(nullptr, 500, nullptr));
        gst_buffer_memset(unit.buffer.get(), 0, 0x5a, 500);
    }
    EXPECT_FALSE(media::decodeLast(units, 1s));
}
