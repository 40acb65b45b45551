#pragma once

#include "settings/ini_store.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

/// What the tests of the store share.
namespace initest {

struct Closer
{
    void operator()(ini_file *file) const { ini_close(file); }
};
using Store = std::unique_ptr<ini_file, Closer>;

inline Store open(const std::filesystem::path &path, const char *mode)
{
    return Store(ini_open(path.c_str(), mode));
}

/// A store without a file.
inline Store inMemory()
{
    return Store(ini_open(nullptr, "w+"));
}

inline void write(const std::filesystem::path &path, const std::string &bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string read(const std::filesystem::path &path)
{
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

/// Each test has its own folder.
class IniTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "ini-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
        m_file = m_folder / "Zelvaro.cfg";
    }
    void TearDown() override
    {
        std::error_code ignored;
        std::filesystem::permissions(m_folder, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(m_folder, ignored);
    }

    /// A store that has loaded these bytes and can write them back.
    Store loaded(const std::string &bytes)
    {
        write(m_file, bytes);
        return open(m_file, "w+");
    }
    /// What the store writes.
    std::string saved(const Store &store)
    {
        EXPECT_EQ(ini_flush(store.get()), 0);
        return read(m_file);
    }
    /// The bytes after loading and writing.
    std::string rewritten(const std::string &bytes) { return saved(loaded(bytes)); }
    std::size_t filesInFolder() const
    {
        const std::filesystem::directory_iterator files(m_folder);
        return std::size_t(std::distance(begin(files), end(files)));
    }

    std::filesystem::path m_folder;
    std::filesystem::path m_file;
};

} // namespace initest
