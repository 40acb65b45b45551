#include "platform/base/certificate_key.h"
#include "platform/base/known_keys.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <thread>
#include <vector>

using base::KnownKeys;
using Verdict = base::KnownKeys::Verdict;

namespace {

const std::string oneKey(64, 'a');
const std::string otherKey(64, 'b');
const base::Endpoint service = {.host = "cam.lan", .port = 322, .tls = true};

class KeysFile
{
public:
    KeysFile()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "keysXXXXXX").string();
        m_folder = mkdtemp(pattern.data());
    }
    ~KeysFile() { std::filesystem::remove_all(m_folder); }
    KeysFile(const KeysFile &) = delete;
    KeysFile &operator=(const KeysFile &) = delete;

    std::string path() const { return m_folder / "keys"; }
    std::string read() const
    {
        std::ifstream file(path());
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void write(const std::string &text) const { std::ofstream(path()) << text; }
    int count() const
    {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(m_folder), {}));
    }

private:
    std::filesystem::path m_folder;
};

TEST(KnownKeys, TheFirstKeyIsKnownFromThenOn)
{
    KnownKeys keys;
    EXPECT_EQ(keys.check(service, oneKey), Verdict::First);
    EXPECT_EQ(keys.check(service, oneKey), Verdict::Known);
    EXPECT_EQ(keys.check({.host = "CAM.lan", .port = 322}, oneKey), Verdict::Known);
    EXPECT_EQ(keys.check({.host = "cam.lan", .port = 443}, otherKey), Verdict::First);
    EXPECT_FALSE(keys.hasChanged("cam.lan"));
}

TEST(KnownKeys, AnotherKeyIsRefusedUntilItIsTrusted)
{
    KnownKeys keys;
    keys.check(service, oneKey);
    EXPECT_EQ(keys.check(service, otherKey), Verdict::Changed);
    EXPECT_EQ(keys.check(service, otherKey), Verdict::Changed) << "asking again changes nothing";
    EXPECT_TRUE(keys.hasChanged("Cam.LAN"));
    EXPECT_FALSE(keys.hasChanged("other.lan"));
    EXPECT_FALSE(keys.trustChanged("other.lan"));
    EXPECT_TRUE(keys.trustChanged("cam.lan"));
    EXPECT_FALSE(keys.hasChanged("cam.lan"));
    EXPECT_EQ(keys.check(service, otherKey), Verdict::Known);
    EXPECT_EQ(keys.check(service, oneKey), Verdict::Changed);
}

TEST(KnownKeys, TheOldKeyThatComesBackIsNoChangeAnyMore)
{
    KnownKeys keys;
    keys.check(service, oneKey);
    keys.check(service, otherKey);
    EXPECT_EQ(keys.check(service, oneKey), Verdict::Known);
    EXPECT_FALSE(keys.hasChanged("cam.lan"));
    EXPECT_FALSE(keys.trustChanged("cam.lan"));
}

TEST(KnownKeys, AKeyThatCannotBeReadIsNeverTrusted)
{
    KnownKeys keys;
    EXPECT_EQ(keys.check(service, ""), Verdict::Changed);
    EXPECT_EQ(keys.check(service, oneKey), Verdict::First);
    EXPECT_EQ(keys.check(service, ""), Verdict::Changed);
    EXPECT_FALSE(keys.trustChanged("cam.lan"));
}

TEST(KnownKeys, AreKeptInAFileOfTheUsersOwn)
{
    const KeysFile file;
    const base::Endpoint ipv6 = {.host = "fe80::1", .port = 443, .tls = true};
    {
        KnownKeys keys;
        EXPECT_TRUE(keys.setFile(file.path()));
        EXPECT_EQ(file.count(), 0) << "nothing is written before there is something to say";
        keys.check(service, oneKey);
        keys.check(ipv6, otherKey);
        keys.waitUntilSaved();
        EXPECT_EQ(file.read(), "cam.lan:322 " + oneKey + "\n[fe80::1]:443 " + otherKey + "\n");
        struct stat status = {};
        ASSERT_EQ(stat(file.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600U);
        EXPECT_EQ(file.count(), 1) << "nothing is left beside it";
    }
    KnownKeys later;
    EXPECT_TRUE(later.setFile(file.path()));
    EXPECT_EQ(later.check(service, oneKey), Verdict::Known);
    EXPECT_EQ(later.check(ipv6, oneKey), Verdict::Changed);
    EXPECT_TRUE(later.trustChanged("fe80::1"));
    later.waitUntilSaved();
    EXPECT_EQ(file.read(), "cam.lan:322 " + oneKey + "\n[fe80::1]:443 " + oneKey + "\n");
}

TEST(KnownKeys, WhatTheFileSaysGoesBeforeWhatWasLearned)
{
    const KeysFile file;
    file.write("cam.lan:322 " + oneKey + "\n");
    KnownKeys keys;
    keys.check(service, otherKey);
    keys.check({.host = "cam.lan", .port = 443}, otherKey);
    EXPECT_TRUE(keys.setFile(file.path()));
    keys.waitUntilSaved();
    EXPECT_EQ(keys.check(service, otherKey), Verdict::Changed);
    EXPECT_EQ(file.read(), "cam.lan:322 " + oneKey + "\ncam.lan:443 " + otherKey + "\n");
}

TEST(KnownKeys, LinesThatCannotBeReadArePassedOver)
{
    const KeysFile file;
    file.write("# a remark\n\ncam.lan " + oneKey + "\ncam.lan:0 " + oneKey + "\na:1\na:2 abc\n" +
               "b:3 " + std::string(64, 'z') + "\n: \n\nCAM.lan:322 " + std::string(64, 'A') +
               "\r\nlast:4 " + otherKey);
    KnownKeys keys;
    EXPECT_TRUE(keys.setFile(file.path()));
    EXPECT_EQ(keys.check(service, oneKey), Verdict::Known);
    EXPECT_EQ(keys.check({.host = "last", .port = 4}, otherKey), Verdict::Known);
    EXPECT_EQ(keys.check({.host = "b", .port = 3}, otherKey), Verdict::First);
}

TEST(KnownKeys, AFileThatCannotBeReadStaysAsItIs)
{
    const KeysFile file;
    std::filesystem::create_directory(file.path());
    KnownKeys keys;
    EXPECT_FALSE(keys.setFile(file.path()));
    EXPECT_EQ(keys.check(service, oneKey), Verdict::First);
    EXPECT_EQ(keys.check(service, otherKey), Verdict::Changed) << "known in this run all the same";
    keys.waitUntilSaved();
    EXPECT_TRUE(std::filesystem::is_directory(file.path()));
}

TEST(KnownKeys, ManyThreadsLoseNoKey)
{
    const KeysFile file;
    {
        KnownKeys keys;
        keys.setFile(file.path());
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&keys, thread] {
                for (int i = 0; i < 50; ++i)
                    keys.check({.host = "camera" + std::to_string(thread),
                                .port = static_cast<uint16_t>(i + 1)},
                               oneKey);
            });
        for (std::thread &thread : threads)
            thread.join();
    }
    const std::string text = file.read();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 200);
}

// openssl x509 -pubkey -noout | openssl pkey -pubin -outform der | sha256sum
TEST(CertificateKey, IsThatOfTheCertificate)
{
    constexpr const char *text =
        "-----BEGIN CERTIFICATE-----\n"
        "MIIBeDCCAR+gAwIBAgIUfTSd1R2z0fP//ePS3rDM+Y2nHPgwCgYIKoZIzj0EAwIw\n"
        "ETEPMA0GA1UEAwwGY2FtZXJhMCAXDTI2MTEyMjA1NDU1OFoYDzIxMjYxMDI5MDU0\n"
        "NTU4WjARMQ8wDQYDVQQDDAZjYW1lcmEwWTATBgcqhkjOPQIBBggqhkjOPQMBBwNC\n"
        "AARLAmWNG9mjX3711zYOUCS/ddzebjl1/DOcCN/HYg3TYneyf0KJNAMeZEhIFpaB\n"
        "D0zmMJCy7AS4yx0TlE7Zi5Y0o1MwUTAdBgNVHQ4EFgQUFwv9O79z4NCgonl93ZNp\n"
        "Fo9LvCMwHwYDVR0jBBgwFoAUFwv9O79z4NCgonl93ZNpFo9LvCMwDwYDVR0TAQH/\n"
        "BAUwAwEB/zAKBggqhkjOPQQDAgNHADBEAiBmJpfja2GRBhZMNZIjEtXmBN1MSDw8\n"
        "/oxutGu5Ha64pQIgcXi9t8LIUGB+1LZwbqvzAH1+iVycU30XyNZDjWhML1E=\n"
        "-----END CERTIFICATE-----\n";
    GTlsCertificate *certificate = g_tls_certificate_new_from_pem(text, -1, nullptr);
    ASSERT_NE(certificate, nullptr);
    EXPECT_EQ(base::publicKeyDigest(certificate),
              "393ab23e7a37655f88f30897e7b1b238d970322f81d68c3ae44c35f59e374e3b");
    g_object_unref(certificate);
}

TEST(CertificateKey, EveryCutOfACertificateIsNone)
{
    // A certificate of version 1, as short as can be.
    const std::vector<uint8_t> whole = {0x30, 0x10, 0x30, 0x0e, 0x02, 0x00, 0x30, 0x00, 0x30,
                                        0x00, 0x30, 0x00, 0x30, 0x00, 0x30, 0x02, 0x05, 0x00};
    const auto key = base::publicKeyOf(whole);
    ASSERT_TRUE(key);
    EXPECT_EQ(std::vector<uint8_t>(key->begin(), key->end()),
              (std::vector<uint8_t>{0x30, 0x02, 0x05, 0x00}));
    for (size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(base::publicKeyOf(std::span(whole).first(size))) << size;
    for (const std::vector<uint8_t> &wrong :
         std::vector<std::vector<uint8_t>>{{0x30, 0x80, 0x30, 0x00}, // a length that is not told
                                           {0x30, 0x85, 0, 0, 0, 0, 1, 0},
                                           {0x31, 0x00},
                                           {0x30, 0x02, 0x30, 0x00}})
        EXPECT_FALSE(base::publicKeyOf(wrong));
}

} // namespace
