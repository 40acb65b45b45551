#include "settings/safe_file.h"
#include "tests/settings/ini_test.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace initest;

namespace {

constexpr uid_t somebody = 65534;

// Reasons for which the system refuses; 0 for none.
int renameFault = 0;
int mkstempFault = 0;

/// Makes a call of the system fail while it lives.
class Fault
{
public:
    Fault(int &call, int reason) : m_call(call) { m_call = reason; }
    ~Fault() { m_call = 0; }
    Fault(const Fault &) = delete;
    Fault &operator=(const Fault &) = delete;

private:
    int &m_call;
};

/// Runs a check in a child process.
template <typename Check>
bool inChild(Check check)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(check() ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

/// The same as a user whom permissions bind, which they do not the super-user.
template <typename Check>
bool asSomebody(Check check)
{
    return inChild([&] { return (geteuid() != 0 || setuid(somebody) == 0) && check(); });
}

/// In a child process: a limit on the size of files simulates the full disk.
bool refusedByALimit(const std::filesystem::path &path)
{
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {1000, 1000};
    setrlimit(RLIMIT_FSIZE, &limit);
    const Store store = open(path, "w");
    for (int i = 0; i < 2000; ++i)
        ini_set(store.get(), std::to_string(i).c_str(), "value");
    return ini_flush(store.get()) == -1 && store->dirty == 1;
}

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
    for (int i = 0; i < 2000; ++i)
        bytes += "k" + std::to_string(i) + "=" + std::string(60, letter) + "\n";
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

// The linker gives the store these two in the place of the system's.
extern "C" {
int __real_rename(const char *from, const char *to);
int __real_mkstemp(char *name);

int __wrap_rename(const char *from, const char *to)
{
    errno = renameFault;
    return renameFault ? -1 : __real_rename(from, to);
}

int __wrap_mkstemp(char *name)
{
    errno = mkstempFault;
    return mkstempFault ? -1 : __real_mkstemp(name);
}
}

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

TEST_F(IniWriting, fileThatMayNotBeWrittenIsRefused)
{
    write(m_file, "k=old\n");
    std::filesystem::permissions(m_file, std::filesystem::perms(0444));
    std::filesystem::permissions(m_folder, std::filesystem::perms(0777));
    EXPECT_TRUE(asSomebody([&] {
        const Store store = changed(m_file);
        return ini_flush(store.get()) == -1 && store->dirty == 1;
    }));
    EXPECT_EQ(read(m_file), "k=old\n");
    EXPECT_EQ(permissions(m_file), 0444u);
    EXPECT_EQ(filesInFolder(), 1u);
}

TEST_F(IniWriting, folderThatMayNotBeWrittenHasItsFileWrittenInPlace)
{
    write(m_file, "k=old and longer than the new one\n");
    std::filesystem::permissions(m_file, std::filesystem::perms(0666));
    std::filesystem::permissions(m_folder, std::filesystem::perms(0555));
    EXPECT_TRUE(asSomebody([&] {
        const Store store = changed(m_file);
        return ini_flush(store.get()) == 0 && store->dirty == 0;
    }));
    EXPECT_EQ(read(m_file), "k=new\n");
}

TEST_F(IniWriting, newFileInAFolderThatMayNotBeWrittenIsRefused)
{
    std::filesystem::permissions(m_folder, std::filesystem::perms(0555));
    EXPECT_TRUE(asSomebody([&] { return ini_flush(changed(m_file).get()) == -1; }));
    EXPECT_EQ(filesInFolder(), 0u);
}

/// As for a file that is mounted by itself.
TEST_F(IniWriting, fileThatCannotBeReplacedIsWrittenInPlace)
{
    for (const int reason : {EBUSY, EACCES, EPERM, EROFS, EXDEV}) {
        write(m_file, "k=old\n");
        std::filesystem::permissions(m_file, std::filesystem::perms(0644));
        const Fault fault(renameFault, reason);
        EXPECT_EQ(ini_flush(changed(m_file).get()), 0) << reason;
        EXPECT_EQ(read(m_file), "k=new\n");
        EXPECT_EQ(permissions(m_file), 0600u);
        EXPECT_EQ(filesInFolder(), 1u);
    }
}

TEST_F(IniWriting, fullDiskIsNoReasonToWriteInPlace)
{
    for (const int reason : {ENOSPC, EDQUOT, EIO}) {
        write(m_file, "k=old\n");
        for (int *call : {&renameFault, &mkstempFault}) {
            const Fault fault(*call, reason);
            expectRefused(m_file);
        }
        EXPECT_EQ(read(m_file), "k=old\n");
        EXPECT_EQ(filesInFolder(), 1u);
    }
}

TEST_F(IniWriting, fullDiskKeepsTheOldFileInPlaceToo)
{
    write(m_file, "k=old\n");
    const Fault fault(mkstempFault, EACCES);
    EXPECT_TRUE(inChild([&] { return refusedByALimit(m_file); }));
    EXPECT_EQ(read(m_file), "k=old\n");
}

/// A run of the super-user must not lock the user out.
TEST_F(IniWriting, ownerStays)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only the super-user can write a file of somebody else";
    write(m_file, "k=old\n");
    ASSERT_EQ(chown(m_file.c_str(), somebody, somebody), 0);
    ASSERT_EQ(safe_file_keep_copy(m_file.c_str()), 0);
    changed(m_file).reset();
    EXPECT_EQ(read(m_file), "k=new\n");
    for (const char *name : {"Zelvaro.cfg", "Zelvaro.cfg.bak"}) {
        struct stat status = {};
        ASSERT_EQ(stat((m_folder / name).c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, somebody);
        EXPECT_EQ(status.st_mode & 07777, 0600u);
    }
}

TEST_F(IniWriting, copyIsKeptForItsOwnerOnly)
{
    write(m_file, "k=first\n");
    EXPECT_EQ(safe_file_keep_copy(m_file.c_str()), 0);
    write(m_file, "k=second\n");
    std::filesystem::permissions(m_file, std::filesystem::perms(0644));
    EXPECT_EQ(safe_file_keep_copy(m_file.c_str()), 0);
    EXPECT_EQ(read(m_folder / "Zelvaro.cfg.bak"), "k=second\n");
    EXPECT_EQ(permissions(m_folder / "Zelvaro.cfg.bak"), 0600u);
    EXPECT_EQ(read(m_file), "k=second\n");
    EXPECT_EQ(filesInFolder(), 2u);
}

TEST_F(IniWriting, missingFileNeedsNoCopy)
{
    write(m_folder / "Zelvaro.cfg.bak", "k=older\n");
    EXPECT_EQ(safe_file_keep_copy(m_file.c_str()), 0);
    EXPECT_EQ(read(m_folder / "Zelvaro.cfg.bak"), "k=older\n");
}

TEST_F(IniWriting, copyThatCannotBeMadeIsReported)
{
    write(m_file, "k=old\n");
    const Fault fault(mkstempFault, EACCES);
    EXPECT_EQ(safe_file_keep_copy(m_file.c_str()), -1);
    EXPECT_EQ(filesInFolder(), 1u);
}

TEST_F(IniWriting, fileThatCannotBeReadIsKeptUnderASecondName)
{
    write(m_file, "k=old\n");
    std::filesystem::permissions(m_file, std::filesystem::perms(0200));
    if (geteuid() == 0) {
        ASSERT_EQ(chown(m_folder.c_str(), somebody, somebody), 0);
        ASSERT_EQ(chown(m_file.c_str(), somebody, somebody), 0);
    }
    EXPECT_TRUE(asSomebody([&] {
        const Store store = changed(m_file);
        return store->unread == 1 && safe_file_keep_copy(m_file.c_str()) == 0 &&
               ini_flush(store.get()) == 0;
    }));
    std::filesystem::permissions(m_folder / "Zelvaro.cfg.bak", std::filesystem::perms(0600));
    EXPECT_EQ(read(m_folder / "Zelvaro.cfg.bak"), "k=old\n");
    EXPECT_EQ(read(m_file), "k=new\n");
}

TEST_F(IniWriting, cleaningRemovesTemporaryFilesOnly)
{
    const char *const others[] = {"Zelvaro.cfg",         "Zelvaro.cfg.bak",
                                  "Zelvaro.cfg.backup",  "Zelvaro.cfg.new-12345",
                                  "Zelvaro.cfg.newer-1", "Zelvaro.cfg.new-1234567",
                                  "Other.cfg.new-123456"};
    for (const char *name : others)
        write(m_folder / name, "x");
    write(m_folder / "Zelvaro.cfg.new-a1B2c3", "x");
    safe_file_clean(m_file.c_str());
    EXPECT_EQ(filesInFolder(), std::size(others));
    for (const char *name : others)
        EXPECT_TRUE(std::filesystem::exists(m_folder / name)) << name;
    safe_file_clean((m_folder / "absent" / "file").c_str());
}

TEST_F(IniWriting, fullDiskKeepsTheOldFile)
{
    write(m_file, "k=old\n");
    EXPECT_TRUE(inChild([&] { return refusedByALimit(m_file); }));
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
        if (child == 0)
            writeForEver(m_file);
        // A new file next to the old one shows that the child is in the middle of writing.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (int seen = 0; seen <= round % 5 && std::chrono::steady_clock::now() < deadline;) {
            seen += filesInFolder() > 1;
            std::this_thread::yield();
        }
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        const std::string left = read(m_file);
        ASSERT_TRUE(left == contents[0] || left == contents[1]) << left.size() << " bytes";
        for (const auto &file : std::filesystem::directory_iterator(m_folder))
            EXPECT_EQ(permissions(file.path()), 0600u);
        safe_file_clean(m_file.c_str());
        EXPECT_EQ(filesInFolder(), 1u);
    }
}
