#pragma once

#include "camsim/camera_model.h"

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace camsim {

/// The command requests "GET /form/<command>?NAME=value&..." of one camera. The answer's body is a
/// status line ("000 Success" when all went well) and NAME=value lines. Main thread.
class CommandForms
{
public:
    enum class Fault
    {
        None,
        Fail,    ///< every command fails
        Garbage, ///< answers are random bytes, no HTTP
        Silent   ///< requests are taken and never answered
    };

    explicit CommandForms(CameraModel &camera);

    /// The body of the answer to a request; query as it was sent, without the "?".
    std::string answer(const std::string &command, const std::string &query);

    Fault fault() const { return m_fault; }
    void setFault(Fault fault) { m_fault = fault; }
    /// Commands with their parameters, in the order in which they came; the last hundred.
    const std::vector<std::string> &log() const { return m_log; }

private:
    using Parameters = std::vector<std::pair<std::string, std::string>>;
    static constexpr int windows = 4;
    static constexpr int fields = 7; ///< all but the window's number

    static Parameters parse(std::string_view query);
    std::string getMotion(const Parameters &parameters) const;
    std::string setMotion(const Parameters &parameters);

    CameraModel &m_camera;
    Fault m_fault = Fault::None;
    std::array<std::array<int, fields>, windows> m_windows;
    std::vector<std::string> m_log;
};

} // namespace camsim
