#pragma once

#include "camsim/camsim_process.h"
#include "tests/platform/ndcp/client_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

inline void setText(char *field, const std::string &text)
{
    std::memcpy(field, text.c_str(), text.size() + 1);
}

inline std::string targetsOf(const CamsimProcess &cameras)
{
    std::string targets;
    for (const SimulatedCamera &camera : cameras.cameras())
        targets += camera.discovery + ' ';
    return targets;
}

inline std::string macText(const ndcp_device &device)
{
    std::string text;
    for (const std::uint8_t byte : device.mac) {
        constexpr char digits[] = "0123456789abcdef";
        text += (text.empty() ? "" : ":");
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

// A simulated camera comes to its new place a moment after it has answered.
inline int readWhenBack(ClientHarness &client, ndcp_device &record)
{
    int error = NDCP_ERROR_NETWORK;
    for (int i = 0; i < 20 && error == NDCP_ERROR_NETWORK; ++i)
        error = client.read(record);
    return error;
}

inline std::vector<std::string> withOptions(const std::vector<std::string> &options)
{
    std::vector<std::string> all = {"--user", "admin", "--password", "secret", "--canned"};
    all.insert(all.end(), options.begin(), options.end());
    return all;
}

/// One simulated camera, a client, and the record as which the client's search found the camera.
class NdcpCamsimTest : public testing::Test
{
protected:
    void start(const std::vector<std::string> &options = {})
    {
        m_cameras = std::make_unique<CamsimProcess>(withOptions(options));
        searchOnlyAt(targetsOf(*m_cameras));
        m_client.emplace(m_context);
        m_record = found();
    }
    void startAndRead(const std::vector<std::string> &options = {})
    {
        start(options);
        ASSERT_EQ(m_client->read(m_record), 0);
    }
    ndcp_device found()
    {
        const SimulatedCamera &camera = m_cameras->camera();
        for (ndcp_device device : m_client->search()) {
            if (device.uid == camera.uid) {
                setText(device.username, camera.user);
                setText(device.password, camera.password);
                return device;
            }
        }
        ADD_FAILURE() << "the camera was not found";
        return {};
    }

    TestContext m_context;
    std::unique_ptr<CamsimProcess> m_cameras;
    std::optional<ClientHarness> m_client; ///< made when the search knows where to look
    ndcp_device m_record = {};
};
