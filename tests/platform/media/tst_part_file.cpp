#include "platform/media/left_overs.h"
#include "platform/media/part_file.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>

using namespace media;
namespace fs = std::filesystem;

namespace {

class PartFileTest : public testing::Test
{
protected:
    void save(const std::string &path, const std::string &text) { std::ofstream(path) << text; }
    std::string contents(const std::string &path)
    {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto &entry : fs::directory_iterator(m_folder.path()))
            names.insert(entry.path().filename());
        return names;
    }

    TemporaryFolder m_folder;
    const std::string m_path = m_folder.file("clip.mp4");
};

TEST_F(PartFileTest, TakesThePlaceOfTheFileThatItWasMadeFrom)
{
    save(m_path, "old");
    const auto old = media::FileIdentity::of(m_path);
    ASSERT_TRUE(old);
    media::PartFile part(m_path);
    part.write("new", 3);
    EXPECT_TRUE(part.putInPlaceOf(*old));
    EXPECT_EQ(contents(m_path), "new");
    EXPECT_EQ(files(), std::set<std::string>{"clip.mp4"});
}

TEST_F(PartFileTest, DoesNotBringBackAFileThatWasDeleted)
{
    save(m_path, "old");
    const auto old = media::FileIdentity::of(m_path);
    {
        media::PartFile part(m_path);
        part.write("new", 3);
        fs::remove(m_path);
        EXPECT_FALSE(part.putInPlaceOf(*old));
    }
    EXPECT_TRUE(files().empty());
}

TEST_F(PartFileTest, DoesNotReplaceAnotherFileOfTheSameName)
{
    save(m_path, "old");
    const auto old = media::FileIdentity::of(m_path);
    {
        media::PartFile part(m_path);
        part.write("new", 3);
        // While the old one is still there, so that its number is not used again.
        save(m_folder.file("other"), "another recording");
        fs::rename(m_folder.file("other"), m_path);
        EXPECT_FALSE(part.putInPlaceOf(*old));
    }
    EXPECT_EQ(contents(m_path), "another recording");
    EXPECT_EQ(files(), std::set<std::string>{"clip.mp4"});
}

TEST_F(PartFileTest, LeftOversOfAnotherProcessAreRemovedAndNothingElse)
{
    const auto earlier = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const char *name : {"a.jpg.1.part", "b.mp4.27.part", "c.mp4", "d.part", "e.x.part",
                             "f.jpg.part", ".3.part", "g.jpg..part"}) {
        save(m_folder.file(name), "x");
        fs::last_write_time(m_folder.file(name), earlier);
    }
    fs::create_directory(m_folder.file("h.jpg.1.part"));
    fs::last_write_time(m_folder.file("h.jpg.1.part"), earlier);
    media::PartFile own(m_path); // is being written
    const size_t before = files().size();
    media::removeLeftOvers(m_folder.path());
    EXPECT_EQ(files().size(), before - 2);
    EXPECT_FALSE(files().contains("a.jpg.1.part"));
    EXPECT_FALSE(files().contains("b.mp4.27.part"));
    media::removeLeftOvers(m_folder.file("missing"));
}

} // namespace
