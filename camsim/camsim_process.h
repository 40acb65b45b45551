#pragma once

#include "camsim/child_process.h"

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zelvaro::test {

/// One simulated camera, as it described itself.
struct SimulatedCamera
{
    std::string name;
    std::string uid;
    std::string address;
    int rtspPort = 0;
    int httpPort = 0;      ///< web pages and command requests
    int onvifPort = 0;     ///< the same, unless "--onvif-port" is given
    std::string discovery; ///< "host:port", as ZELVARO_DISCOVERY_TARGETS wants it
    std::string mainUrl;
    std::string subUrl;
    std::string user;
    std::string password;
    std::string mac;

    /// "address:rtsp-port": what a user types as the camera's host name.
    std::string host() const { return address + ":" + std::to_string(rtspPort); }
    /// The URL with user name and password in it, for other players.
    std::string urlWithLogin(const std::string &url) const;
};

/// Runs the simulated cameras as a separate process and ends it with this object, or when this
/// process ends for whatever reason. Use from one thread. Throws std::runtime_error when the
/// cameras do not come up, so that a test fails where it starts.
class CamsimProcess
{
public:
    /// arguments as camsim --help lists them; the number of cameras is taken from "--count".
    explicit CamsimProcess(const std::vector<std::string> &arguments = {},
                           std::chrono::milliseconds deadline = std::chrono::seconds(180));
    ~CamsimProcess();
    CamsimProcess(const CamsimProcess &) = delete;
    CamsimProcess &operator=(const CamsimProcess &) = delete;

    const std::vector<SimulatedCamera> &cameras() const { return m_cameras; }
    const SimulatedCamera &camera(std::size_t index = 0) const { return m_cameras.at(index); }

    /// Sends one line to the control connection ("0 drop") and gives the answer ("OK").
    std::string control(const std::string &line);
    /// The same, for a camera; true when the answer is OK.
    bool tell(int camera, const std::string &command);
    /// The camera's status: each key of its JSON with the value as text.
    std::map<std::string, std::string> status(int camera = 0);
    long statusNumber(const std::string &key, int camera = 0);

    /// Ends the process at once, as a power failure would.
    void kill();

private:
    void connectControl(int port);

    std::vector<SimulatedCamera> m_cameras;
    std::unique_ptr<ChildProcess> m_process; ///< ends when its input does; null after kill()
    int m_control = -1;
    LineReader m_answers{-1};
};

/// The keys and values of one line with a flat JSON object; values without quotation marks.
std::map<std::string, std::string> parseFlatJson(const std::string &line);

} // namespace zelvaro::test
