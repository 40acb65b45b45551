#include "platform/onvif/discovery_search.h"

#include "tests/platform/onvif/support/discovery_answers.h"
#include "tests/platform/onvif/support/raw_peer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace onvif {

namespace {

constexpr const char *uuid = "4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";

std::string kindFor(const std::string &question)
{
    return question.find("<d:Resolve>") != std::string::npos ? "ResolveMatches" : "ProbeMatches";
}

std::string answerTo(const std::string &question, const std::vector<AnnouncedDevice> &devices)
{
    return discoveryAnswer(kindFor(question), messageIdOf(question), devices);
}

UdpPeer::Answer always(const AnnouncedDevice &device)
{
    return [device](const std::string &question) {
        return std::vector<std::string>{answerTo(question, {device})};
    };
}

AnnouncedDevice numbered(int number)
{
    AnnouncedDevice device;
    device.endpoint = "urn:uuid:device-" + std::to_string(number);
    return device;
}

class DiscoverySearchTest : public testing::Test
{
protected:
    static SearchScope only(const std::vector<std::string> &targets)
    {
        SearchScope scope;
        scope.multicast = false;
        scope.targets = targets;
        scope.milliseconds = 1600;
        return scope;
    }

    SearchResult resultOf(const SearchScope &scope)
    {
        std::optional<SearchResult> found;
        const DiscoverySearch running(m_context.get(), scope,
                                      [&found](SearchResult result) { found = std::move(result); });
        EXPECT_FALSE(found) << "the end is never told inside the start";
        EXPECT_TRUE(m_context.runUntil([&found] { return found.has_value(); }));
        return found.value_or(SearchResult());
    }

    std::vector<DiscoveredDevice> search(const SearchScope &scope)
    {
        return resultOf(scope).devices;
    }

    TestContext m_context;
};

} // namespace

TEST_F(DiscoverySearchTest, FindsADeviceAmongTheTargets)
{
    UdpPeer peer(m_context, always({}));
    const auto devices = search(only({peer.target()}));
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_EQ(devices[0].uid, uuid);
    EXPECT_EQ(devices[0].name, "Door");
    EXPECT_EQ(devices[0].senderAddress, "127.0.0.1");
    EXPECT_EQ(devices[0].serviceAddress, "http://127.0.0.1:8080/onvif/device_service");
}

TEST_F(DiscoverySearchTest, AsksForBothTypesThreeTimes)
{
    UdpPeer peer(m_context, [](const std::string &) { return std::vector<std::string>(); });
    EXPECT_TRUE(search(only({peer.target()})).empty());
    const auto count = [&peer](const char *type) {
        return std::count_if(peer.received().begin(), peer.received().end(),
                             [type](const std::string &question) {
                                 return question.find(type) != std::string::npos;
                             });
    };
    EXPECT_EQ(count(">dn:NetworkVideoTransmitter<"), 3);
    EXPECT_EQ(count(">tds:Device<"), 3);
    std::vector<std::string> ids;
    std::transform(peer.received().begin(), peer.received().end(), std::back_inserter(ids),
                   messageIdOf);
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(std::unique(ids.begin(), ids.end()), ids.end()) << "identifiers of their own";
}

TEST_F(DiscoverySearchTest, ReadsItsScopeFromTheEnvironment)
{
    g_setenv("ZELVARO_DISCOVERY_TARGETS", " 127.0.0.1:1000,cam.lan  10.0.0.1:3,", TRUE);
    g_setenv("ZELVARO_DISCOVERY_MULTICAST", "0", TRUE);
    const SearchScope scope = SearchScope::fromEnvironment();
    EXPECT_EQ(scope.targets, (std::vector<std::string>{"127.0.0.1:1000", "cam.lan", "10.0.0.1:3"}));
    EXPECT_FALSE(scope.multicast);
    g_unsetenv("ZELVARO_DISCOVERY_TARGETS");
    g_unsetenv("ZELVARO_DISCOVERY_MULTICAST");
    EXPECT_TRUE(SearchScope::fromEnvironment().multicast);
    EXPECT_TRUE(SearchScope::fromEnvironment().targets.empty());
}

TEST_F(DiscoverySearchTest, MergesAnswersByUid)
{
    AnnouncedDevice shouting;
    shouting.endpoint = "urn:uuid:4FA94C7C-8F6B-4C57-9A55-3F1D50E6A101";
    UdpPeer first(m_context, always({}));
    UdpPeer second(m_context, always(shouting));
    EXPECT_EQ(search(only({first.target(), second.target()})).size(), 1u);
}

TEST_F(DiscoverySearchTest, FillsInWhatALaterAnswerOfTheSameDeviceAdds)
{
    int answers = 0;
    UdpPeer peer(m_context, [&answers](const std::string &question) {
        AnnouncedDevice device;
        if (answers++ == 0)
            device.scopes = "onvif://www.onvif.org/name/Door";
        else
            device.scopes = "onvif://www.onvif.org/hardware/ZC-1 onvif://www.onvif.org/name/Other";
        return std::vector<std::string>{answerTo(question, {device})};
    });
    const auto devices = search(only({peer.target()}));
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_EQ(devices[0].name, "Door");
    EXPECT_EQ(devices[0].model, "ZC-1");
}

TEST_F(DiscoverySearchTest, EndsEarlyWhenItHasEnough)
{
    UdpPeer peer(m_context, always({}));
    SearchScope scope = only({peer.target()});
    scope.milliseconds = 600'000;
    scope.uid = uuid;
    scope.isWanted = [](const DiscoveredDevice &device) { return device.uid == uuid; };
    EXPECT_EQ(search(scope).size(), 1u);
    ASSERT_FALSE(peer.received().empty());
    EXPECT_EQ(kindFor(peer.received().front()), "ResolveMatches") << "Resolve goes out first";
}

TEST_F(DiscoverySearchTest, HandsOverTheDeviceThatEndedIt)
{
    for (const bool comesFirst : {true, false}) {
        UdpPeer peer(m_context, [comesFirst](const std::string &question) {
            std::vector<AnnouncedDevice> devices = {numbered(1), numbered(2)};
            devices.insert(comesFirst ? devices.begin() : devices.end(), AnnouncedDevice());
            return std::vector<std::string>{answerTo(question, devices)};
        });
        SearchScope scope = only({peer.target()});
        scope.isWanted = [](const DiscoveredDevice &device) { return device.uid == uuid; };
        const SearchResult result = resultOf(scope);
        ASSERT_TRUE(result.wanted);
        EXPECT_EQ(result.wanted->uid, uuid);
        EXPECT_EQ(result.devices.size(), 3u);
    }
}

TEST_F(DiscoverySearchTest, SeesADeviceThatAnsweredFromItsOldPlaceBefore)
{
    UdpPeer peer(m_context, [](const std::string &question) {
        AnnouncedDevice moved;
        moved.xaddrs = "http://127.0.0.9/onvif/device_service";
        return std::vector<std::string>{answerTo(question, {AnnouncedDevice()}),
                                        answerTo(question, {moved})};
    });
    SearchScope scope = only({peer.target()});
    scope.isWanted = [](const DiscoveredDevice &device) {
        return device.serviceAddress.starts_with("http://127.0.0.9/");
    };
    EXPECT_TRUE(resultOf(scope).wanted);
}

TEST_F(DiscoverySearchTest, TakesAnswersOfItsTargetsOnlyWhenItIsTold)
{
    UdpPeer peer(m_context, always({}));
    SearchScope scope = only({peer.target()});
    scope.onlyTargets = true;
    EXPECT_EQ(search(scope).size(), 1u);
}

TEST_F(DiscoverySearchTest, IgnoresAnswersToForeignQuestions)
{
    UdpPeer peer(m_context, [](const std::string &) {
        return std::vector<std::string>{discoveryAnswer(
            "ProbeMatches", "urn:uuid:99999999-2222-4333-8444-555555555555", {AnnouncedDevice{}})};
    });
    EXPECT_TRUE(search(only({peer.target()})).empty());
}

TEST_F(DiscoverySearchTest, StopsAtAThousandDevices)
{
    int next = 0;
    UdpPeer peer(m_context, [&next](const std::string &question) {
        std::vector<std::string> answers;
        for (int i = 0; i < 40; ++i) {
            std::vector<AnnouncedDevice> devices;
            for (int j = 0; j < 30; ++j)
                devices.push_back(numbered(next++));
            answers.push_back(answerTo(question, devices));
        }
        return answers;
    });
    SearchScope scope = only({peer.target()});
    scope.milliseconds = 6'000; // a busy machine needs some for so many
    EXPECT_EQ(search(scope).size(), maxDevices);
    EXPECT_GT(next, 2'000);
}

TEST_F(DiscoverySearchTest, SurvivesHostileAnswers)
{
    UdpPeer peer(m_context, [](const std::string &question) {
        AnnouncedDevice path;
        path.endpoint = "../../.ssh";
        AnnouncedDevice elsewhere = numbered(1);
        elsewhere.xaddrs = "http://8.8.8.8/onvif/device_service http://169.254.169.254/latest";
        AnnouncedDevice controls = numbered(2);
        controls.scopes = "onvif://www.onvif.org/name/%1B%5D0%3Bevil%07";
        const std::string good = answerTo(question, {path, elsewhere, controls});
        std::string deep = "<a><Envelope><Body><ProbeMatches>";
        for (int i = 0; i < 5'000; ++i)
            deep += "<x>";
        return std::vector<std::string>{"",
                                        "hello",
                                        std::string(60'000, 'A'),
                                        std::string(60'000, '<'),
                                        good.substr(0, good.size() / 2),
                                        deep,
                                        "<!DOCTYPE a [<!ENTITY b \"" + std::string(1'000, 'b') +
                                            "\">]>" + good,
                                        good};
    });
    const auto devices = search(only({peer.target()}));
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices[0].uid, "device-1");
    EXPECT_EQ(devices[0].serviceAddress, "http://127.0.0.1/onvif/device_service");
    EXPECT_EQ(devices[1].name, "]0;evil");
}

TEST_F(DiscoverySearchTest, GoesOnPastTargetsThatAreNotThere)
{
    UdpPeer peer(m_context, always({}));
    std::string gone;
    {
        const UdpPeer closed(m_context, always({}));
        gone = closed.target();
    }
    EXPECT_EQ(
        search(only({gone, "not a host", "[::1]:9", "127.0.0.1:99999", peer.target()})).size(), 1u);
}

TEST_F(DiscoverySearchTest, WithoutTargetsEndsEmpty)
{
    SearchScope scope = only({});
    scope.milliseconds = 10;
    EXPECT_TRUE(search(scope).empty());
}

TEST_F(DiscoverySearchTest, IsCancelledByItsDestruction)
{
    UdpPeer peer(m_context, always({}));
    bool isCalled = false;
    SearchScope scope = only({peer.target(), "localhost:9"});
    scope.milliseconds = 1;
    {
        const DiscoverySearch search(
            m_context.get(), scope, [&isCalled](const auto &) { isCalled = true; });
    }
    m_context.drain();
    EXPECT_FALSE(isCalled);
}

TEST_F(DiscoverySearchTest, MayBeDestroyedByItsReceiver)
{
    SearchScope scope = only({});
    scope.milliseconds = 0;
    RequestPtr search;
    search = std::make_unique<DiscoverySearch>(
        m_context.get(), scope, [&search](const auto &) { search.reset(); });
    EXPECT_TRUE(m_context.runUntil([&search] { return !search; }));
}

} // namespace onvif
