#include "camsim/camsim_process.h"
#include "tests/camsim/peer.h"

#include <gtest/gtest.h>

using namespace camsim::test;
using zelvaro::test::CamsimProcess;

namespace {

// "admin:camsim" and "admin:wrong"
const std::string right = "YWRtaW46Y2Ftc2lt";
const std::string wrong = "YWRtaW46d3Jvbmc=";

/// A command request as the client sends it: nothing but the authorization, not even a Host.
std::string request(const std::string &command, const std::string &login = right)
{
    return "GET /form/" + command + " HTTP/1.1\r\nAuthorization: Basic " + login + "\r\n\r\n";
}

bool has(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

class Commands : public testing::Test
{
protected:
    std::string answer(const std::string &text, const std::string &until)
    {
        RawConnection connection(m_camsim.camera().address, m_camsim.camera().httpPort);
        EXPECT_TRUE(connection.send(text));
        return connection.readUntil([&](const std::string &all) { return has(all, until); });
    }

    CamsimProcess m_camsim{{"--reboot-time", "0.5"}};
};

} // namespace

TEST_F(Commands, AMotionWindowHasEightFieldsInOrder)
{
    EXPECT_TRUE(
        has(answer(request("getMotion?WINDOW=1"), "SENSITIVITY=70\n"),
            "\r\n\r\n000 Success\nWINDOW=1\nENABLE=1\nLEFT=0\nTOP=0\nRIGHT=639\nBOTTOM=479\n"
            "THRESHOLD=60\nSENSITIVITY=70\n"));
    EXPECT_TRUE(has(answer(request("getMotion?WINDOW=3"), "SENSITIVITY=70\n"),
                    "000 Success\nWINDOW=3\nENABLE=0\nLEFT=0\nTOP=240\nRIGHT=320\nBOTTOM=479\n"));
}

TEST_F(Commands, AMotionWindowIsKept)
{
    const std::string values = "WINDOW=2&ENABLE=1&LEFT=10&TOP=20&RIGHT=300&BOTTOM=200&THRESHOLD=5"
                               "&SENSITIVITY=99";
    EXPECT_TRUE(has(answer(request("setMotion?" + values), "000"), "000 Success\n"));
    EXPECT_TRUE(has(answer(request("getMotion?WINDOW=2"), "SENSITIVITY=99\n"),
                    "WINDOW=2\nENABLE=1\nLEFT=10\nTOP=20\nRIGHT=300\nBOTTOM=200\nTHRESHOLD=5\n"));
}

TEST_F(Commands, WrongWindowsAndValuesAreRefused)
{
    for (const std::string command :
         {"getMotion", "getMotion?WINDOW=5", "getMotion?WINDOW=", "getMotion?WINDOW=x",
          "setMotion?WINDOW=1&ENABLE=1&LEFT=&TOP=0&RIGHT=1&BOTTOM=1&THRESHOLD=1&SENSITIVITY=1",
          "setMotion?WINDOW=1&ENABLE=1&LEFT=640&TOP=0&RIGHT=1&BOTTOM=1&THRESHOLD=1&SENSITIVITY=1",
          "setMotion?WINDOW=1&ENABLE=1"})
        EXPECT_TRUE(has(answer(request(command), "003"), "003 Wrong parameter\n")) << command;
    EXPECT_TRUE(has(answer(request("makeCoffee"), "002"), "002 Unknown command\n"));
}

TEST_F(Commands, SeveralRequestsOnOneConnectionAreAnsweredInOrder)
{
    const std::string all = answer(request("getMotion?WINDOW=1") + request("getMotion?WINDOW=2") +
                                       request("getAutoReboot") + request("getMotion?WINDOW=4"),
                                   "WINDOW=4\n");
    const auto first = all.find("WINDOW=1\n");
    const auto second = all.find("WINDOW=2\n");
    const auto last = all.find("WINDOW=4\n");
    EXPECT_LT(first, second);
    EXPECT_LT(second, last);
    EXPECT_NE(last, std::string::npos) << all;
}

TEST_F(Commands, EveryListedQueryIsAnswered)
{
    for (const std::string command : {"getAutoReboot", "getStorageAlarmRecord",
                                      "getStorageAlarmSnapshot", "getEmailAlarmSending"})
        EXPECT_TRUE(has(answer(request(command), "ENABLE="), "000 Success\nENABLE=0\n"));
}

TEST_F(Commands, AnotherClientUnderstandsThemToo)
{
    const std::string base =
        "curl -s -m 30 'http://127.0.0.1:" + std::to_string(m_camsim.camera().httpPort) +
        "/form/getMotion?WINDOW=1' ";
    EXPECT_TRUE(run(base + "-u admin:camsim").has("000 Success\nWINDOW=1\n"));
    EXPECT_TRUE(run(base + "-u admin:wrong -w '%{http_code}'").has("401"));
}

TEST_F(Commands, AWrongPasswordIsRefused)
{
    EXPECT_TRUE(has(answer(request("getMotion?WINDOW=1", wrong), "401"), "HTTP/1.1 401"));
    EXPECT_TRUE(m_camsim.tell(0, "password wrong"));
    EXPECT_TRUE(has(answer(request("getMotion?WINDOW=1", wrong), "000"), "000 Success"));
}

TEST_F(Commands, RebootAnswersAndThenGoesDown)
{
    EXPECT_TRUE(has(answer(request("sysReboot"), "000"), "000 Success\n"));
    EXPECT_TRUE(eventually(
        [&] { return !RawConnection("127.0.0.1", m_camsim.camera().httpPort).isConnected(); }));
    EXPECT_TRUE(eventually(
        [&] { return RawConnection("127.0.0.1", m_camsim.camera().httpPort).isConnected(); }));
}

TEST_F(Commands, TheyCanFailBeGarbageOrStaySilent)
{
    EXPECT_TRUE(m_camsim.tell(0, "command-fail"));
    EXPECT_TRUE(has(answer(request("getMotion?WINDOW=1"), "001"), "001 Failed\n"));
    EXPECT_TRUE(m_camsim.tell(0, "command-garbage"));
    const std::string garbage = answer(request("getMotion?WINDOW=1"), "HTTP/1.1");
    EXPECT_GE(garbage.size(), 100U);
    EXPECT_FALSE(has(garbage, "HTTP/1.1"));
    EXPECT_TRUE(m_camsim.tell(0, "command-silent"));
    RawConnection silent("127.0.0.1", m_camsim.camera().httpPort);
    EXPECT_TRUE(silent.send(request("getMotion?WINDOW=1")));
    silent.readUntil([](const std::string &all) { return !all.empty(); }, std::chrono::seconds(1));
    EXPECT_TRUE(silent.received().empty());
    EXPECT_FALSE(silent.isClosed());
    EXPECT_TRUE(m_camsim.tell(0, "heal"));
    EXPECT_TRUE(has(answer(request("getMotion?WINDOW=1"), "000"), "000 Success\n"));
}

TEST_F(Commands, TheCameraRemembersWhatItWasTold)
{
    answer(request("getMotion?WINDOW=1") + request("getAutoReboot"), "MINUTE");
    EXPECT_EQ(m_camsim.status()["command_log"], "getMotion?WINDOW=1\ngetAutoReboot");
}
