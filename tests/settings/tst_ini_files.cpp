#include "tests/settings/ini_test.h"

#include <random>
#include <sys/stat.h>

using namespace initest;

namespace {

/// Bytes of which files are made that are near to real ones.
std::string randomFile(std::mt19937 &random, bool lines)
{
    static const std::string alphabet("=\"[]# \t\r\nab0\\;\xe9");
    const std::size_t length = random() % 600;
    std::string bytes;
    for (std::size_t i = 0; i < length; ++i)
        bytes += lines ? alphabet[random() % alphabet.size()] : char(random());
    return bytes;
}

} // namespace

class IniFiles : public IniTest
{
};

class IniSamples : public IniTest, public testing::WithParamInterface<std::string>
{
};

TEST_P(IniSamples, isWrittenBackByteForByte)
{
    const std::filesystem::path data(TEST_DATA);
    EXPECT_EQ(rewritten(read(data / (GetParam() + ".cfg"))), read(data / (GetParam() + ".saved")));
}

INSTANTIATE_TEST_SUITE_P(Data, IniSamples,
                         testing::Values("comments_and_blanks", "crlf", "empty", "equals",
                                         "headers", "long_lines", "no_final_line_feed", "nul_bytes",
                                         "other_bytes", "quotes", "two_cameras"),
                         [](const auto &info) { return info.param; });

TEST_F(IniFiles, everySampleIsTested)
{
    std::size_t samples = 0;
    for (const auto &file : std::filesystem::directory_iterator(TEST_DATA))
        samples += file.path().extension() == ".cfg";
    EXPECT_EQ(samples, 11u);
}

/// A file without tabs, carriage returns, lone quotes and long lines stays as it is once it has
/// been written.
TEST_F(IniFiles, writtenFilesAreStable)
{
    std::mt19937 random(20180813);
    static const std::string alphabet("=\"[]# ab0;");
    for (int round = 0; round < 100; ++round) {
        std::string bytes;
        for (int line = 0; line < 20; ++line) {
            for (std::size_t i = random() % 12; i > 0; --i)
                bytes += alphabet[random() % alphabet.size()];
            bytes += '\n';
        }
        // Quotes around a key go one layer at a time, and a line "=x" becomes "x=": a few rounds.
        std::string once = rewritten(bytes);
        std::string before;
        for (int settle = 0; settle < 12 && before != once; ++settle) {
            before = once;
            once = rewritten(once);
        }
        EXPECT_EQ(before, once) << "from\n" << bytes;
    }
}

/// What is set is what is read after writing, for every text that a line can hold.
TEST_F(IniFiles, valuesComeBackAfterWriting)
{
    std::mt19937 random(1);
    static const std::string alphabet("=\"[]# ab0;\\\xe9");
    for (int round = 0; round < 100; ++round) {
        std::string value;
        for (std::size_t i = random() % 40; i > 0; --i)
            value += alphabet[random() % alphabet.size()];
        Store store = open(m_file, "w");
        ini_use_section(store.get(), "0");
        ASSERT_EQ(ini_set(store.get(), "PASSWORD", value.c_str()), 0);
        store.reset();
        store = open(m_file, "r");
        ASSERT_EQ(ini_select_section(store.get(), "0"), 0);
        EXPECT_EQ(ini_get_string(store.get(), "PASSWORD"), value);
    }
}

TEST_F(IniFiles, randomBytesAreTakenAndWritten)
{
    std::mt19937 random(7);
    for (int round = 0; round < 100; ++round) {
        const Store store = loaded(randomFile(random, round % 2));
        EXPECT_EQ(ini_set(store.get(), "ALBUMPATH", "x"), 0);
        EXPECT_STREQ(ini_get(store.get(), "ALBUMPATH"), "x");
        EXPECT_EQ(ini_flush(store.get()), 0);
    }
}

TEST_F(IniFiles, whatIsNoPlainFileIsNotRead)
{
    ASSERT_EQ(mkfifo(m_file.c_str(), 0600), 0);
    EXPECT_EQ(ini_next_entry(open(m_file, "r").get(), nullptr, nullptr), -1);
    std::filesystem::create_symlink("/dev/zero", m_folder / "endless");
    EXPECT_EQ(ini_next_entry(open(m_folder / "endless", "r").get(), nullptr, nullptr), -1);
}

TEST_F(IniFiles, fileOfTenMegabytesIsTaken)
{
    constexpr std::size_t size = 10u << 20;
    std::mt19937 random(3);
    std::string bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(random());
    EXPECT_EQ(ini_set(loaded(bytes).get(), "k", "v"), 0);
    // One line without an end; nothing but headers; nothing but line ends.
    EXPECT_EQ(ini_set(loaded(std::string(size, 'x')).get(), "k", "v"), 0);
    std::string headers;
    while (headers.size() < size)
        headers += "[x]\n";
    const Store store = loaded(headers);
    EXPECT_EQ(ini_select_section(store.get(), "x"), 0);
    EXPECT_EQ(ini_select_section(store.get(), "y"), -1);
    EXPECT_EQ(ini_set(loaded(std::string(size, '\n')).get(), "k", "v"), 0);
}

TEST_F(IniFiles, hundredThousandNumberedSectionsAreReadInTurn)
{
    std::string bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += "[" + std::to_string(i) + "]\nHOSTNAME=" + std::to_string(i) + "\n";
    const Store store = loaded(bytes);
    for (int i = 0; i < 100000; ++i) {
        ASSERT_EQ(ini_select_section(store.get(), std::to_string(i).c_str()), 0);
        ASSERT_EQ(ini_get_string(store.get(), "HOSTNAME"), std::to_string(i));
    }
    EXPECT_EQ(saved(store), bytes);
}

TEST_F(IniFiles, byteOrderMarkIsNoPartOfTheFirstLine)
{
    const Store key = loaded("\xEF\xBB\xBF"
                             "k=v\n");
    EXPECT_STREQ(ini_get(key.get(), "k"), "v");
    const Store header = loaded("\xEF\xBB\xBF[0]\nk=v\n");
    EXPECT_EQ(ini_select_section(header.get(), "0"), 0);
    EXPECT_STREQ(ini_get(header.get(), "k"), "v");
    for (const char *shorter : {"", "\xEF", "\xEF\xBB", "\xEF\xBB\n\xBF"})
        EXPECT_EQ(rewritten(shorter), *shorter ? shorter + std::string("\n") : "");
    EXPECT_EQ(rewritten("\xEF\xBB\xBF"), "");
}

TEST_F(IniFiles, fileThatCannotBeReadIsKnown)
{
    EXPECT_EQ(open(m_file, "r")->unread, 0);
    EXPECT_EQ(open(m_file / "below", "r")->unread, 0);
    write(m_file, "k=v\n");
    EXPECT_EQ(open(m_file, "r")->unread, 0);
    EXPECT_EQ(open(m_file / "below", "r")->unread, 0);
    EXPECT_EQ(open(m_folder, "r")->unread, 1);
}
