#include "tests/settings/ini_test.h"

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace initest;

namespace {

mode_t permissions(const std::filesystem::path &path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

/// A file of many lines that all hold the same letter.
std::string uniform(char letter)
{
    std::string bytes;
    for (int i = 0; i < 2000; ++i) {
        bytes += "k" + std::to_string(i) + "=" + std::string(60, letter) + "\n";
    }
    return bytes;
}

/// In a child process: writes two contents in turn until it is killed.
[[noreturn]] void writeForEver(const std::filesystem::path &path)
{
    for (char letter = 'b';; letter = letter == 'a' ? 'b' : 'a') {
        const Store store = open(path, "w");
        for (int i = 0; i < 2000; ++i) {
            ini_set(store.get(), ("k" + std::to_string(i)).c_str(),
                    std::string(60, letter).c_str());
        }
        ini_flush(store.get());
    }
}

} // namespace

class IniWriting : public IniTest
{
protected:
    /// A store with one change that is to be written to path.
    Store changed(const std::filesystem::path &path)
    {
        Store store = open(path, "w+");
        EXPECT_EQ(ini_set(store.get(), "k", "new"), 0);
        return store;
    }
    /// The write fails, the store keeps its content and its flag.
    void expectRefused(const std::filesystem::path &path)
    {
        const Store store = changed(path);
        EXPECT_EQ(ini_flush(store.get()), -1);
        EXPECT_EQ(store->dirty, 1);
        EXPECT_STREQ(ini_get(store.get(), "k"), "new");
    }
};

TEST_F(IniWriting, fileIsForItsOwnerOnly)
{
    changed(m_file).reset();
    EXPECT_EQ(permissions(m_file), 0600u);
}

TEST_F(IniWriting, rewrittenFileIsForItsOwnerOnly)
{
    write(m_file, "k=old\n");
    std::filesystem::permissions(m_file, std::filesystem::perms(0644));
    changed(m_file).reset();
    EXPECT_EQ(permissions(m_file), 0600u);
    EXPECT_EQ(read(m_file), "k=new\n");
}

TEST_F(IniWriting, nothingIsLeftBeside)
{
    changed(m_file).reset();
    changed(m_file).reset();
    EXPECT_EQ(filesInFolder(), 1u);
}

TEST_F(IniWriting, symbolicLinkStaysAndItsTargetIsReplaced)
{
    std::filesystem::create_directory(m_folder / "real");
    write(m_folder / "real" / "file", "k=old\n");
    std::filesystem::create_symlink("real/file", m_folder / "second");
    std::filesystem::create_symlink(m_folder / "second", m_file);
    changed(m_file).reset();
    EXPECT_TRUE(std::filesystem::is_symlink(m_file));
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder / "second"));
    EXPECT_EQ(read(m_folder / "real" / "file"), "k=new\n");
}

TEST_F(IniWriting, symbolicLinkToNothingGetsItsTarget)
{
    std::filesystem::create_symlink("absent", m_file);
    changed(m_file).reset();
    EXPECT_TRUE(std::filesystem::is_symlink(m_file));
    EXPECT_EQ(read(m_folder / "absent"), "k=new\n");
}

TEST_F(IniWriting, circleOfLinksIsRefused)
{
    std::filesystem::create_symlink("other", m_file);
    std::filesystem::create_symlink(m_file, m_folder / "other");
    expectRefused(m_file);
    EXPECT_EQ(filesInFolder(), 2u);
}

TEST_F(IniWriting, missingFolderIsRefused)
{
    expectRefused(m_folder / "absent" / "file");
}

TEST_F(IniWriting, folderInThePlaceOfTheFileIsRefused)
{
    std::filesystem::create_directory(m_file);
    expectRefused(m_file);
    EXPECT_TRUE(std::filesystem::is_directory(m_file));
    EXPECT_EQ(filesInFolder(), 1u);
}

TEST_F(IniWriting, deviceInThePlaceOfTheFileIsRefused)
{
    ASSERT_EQ(mkfifo(m_file.c_str(), 0600), 0);
    const Store store(ini_open(m_file.c_str(), "w"));
    ASSERT_EQ(ini_set(store.get(), "k", "v"), 0);
    EXPECT_EQ(ini_flush(store.get()), -1);
    EXPECT_TRUE(std::filesystem::is_fifo(m_file));
}

TEST_F(IniWriting, relativePathIsWrittenWhereTheProgramStands)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(m_folder);
    changed("plain.cfg").reset();
    std::filesystem::current_path(before);
    EXPECT_EQ(read(m_folder / "plain.cfg"), "k=new\n");
}

/// Permissions do not bind the super-user, so the child is somebody else.
TEST_F(IniWriting, folderWithoutWritePermissionIsRefused)
{
    write(m_file, "k=old\n");
    std::filesystem::permissions(m_file, std::filesystem::perms(0666));
    std::filesystem::permissions(m_folder, std::filesystem::perms(0555));
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (geteuid() == 0 && setuid(65534) != 0) {
            _exit(2);
        }
        const Store store = changed(m_file);
        const bool refused = ini_flush(store.get()) == -1 && store->dirty == 1;
        _exit(refused ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(read(m_file), "k=old\n");
}

/// A limit on the size of files stands for the full disk.
TEST_F(IniWriting, fullDiskKeepsTheOldFile)
{
    write(m_file, "k=old\n");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        const Store store = open(m_file, "w");
        for (int i = 0; i < 2000; ++i) {
            ini_set(store.get(), std::to_string(i).c_str(), "value");
        }
        _exit(ini_flush(store.get()) == -1 && store->dirty == 1 ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(read(m_file), "k=old\n");
    EXPECT_EQ(filesInFolder(), 1u);
}

TEST_F(IniWriting, killInTheMiddleLeavesOldOrNewWhole)
{
    const std::string contents[] = {uniform('a'), uniform('b')};
    write(m_file, contents[0]);
    std::filesystem::permissions(m_file, std::filesystem::perms(0600));
    for (int round = 0; round < 60; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            writeForEver(m_file);
        }
        // A new file beside the old one shows that the child is in the middle of writing.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (int seen = 0; seen <= round % 5 && std::chrono::steady_clock::now() < deadline;) {
            seen += filesInFolder() > 1;
            std::this_thread::yield();
        }
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        const std::string left = read(m_file);
        ASSERT_TRUE(left == contents[0] || left == contents[1]) << left.size() << " bytes";
        for (const auto &file : std::filesystem::directory_iterator(m_folder)) {
            EXPECT_EQ(permissions(file.path()), 0600u);
            if (file.path() != m_file) {
                std::filesystem::remove(file.path());
            }
        }
    }
}
