#include "camsim/camsim_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

extern char **environ;

namespace zelvaro::test {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error("camsim: " + what);
}

std::size_t countOf(const std::vector<std::string> &arguments)
{
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i)
        if (arguments[i] == "--count")
            return std::stoul(arguments[i + 1]);
    return 1;
}

int toInt(const std::string &text)
{
    return text.empty() ? 0 : std::atoi(text.c_str());
}

/// One string or bare word of a JSON text, from position at; at is moved behind it.
std::string readToken(const std::string &text, std::size_t &at)
{
    std::string token;
    if (text[at] != '"') {
        while (at < text.size() && text[at] != ',' && text[at] != '}')
            token += text[at++];
        return token;
    }
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] != '\\') {
            token += text[at];
        } else if (text.compare(at, 2, "\\u") == 0 && at + 5 < text.size()) {
            token += static_cast<char>(std::stoi(text.substr(at + 2, 4), nullptr, 16));
            at += 5;
        } else {
            token += text[++at];
        }
    }
    ++at;
    return token;
}

SimulatedCamera parseCamera(std::map<std::string, std::string> fields)
{
    SimulatedCamera camera;
    camera.name = fields["name"];
    camera.uid = fields["uid"];
    camera.address = fields["address"];
    camera.rtspPort = toInt(fields["rtsp_port"]);
    camera.httpPort = toInt(fields["http_port"]);
    camera.onvifPort = toInt(fields["onvif_port"]);
    camera.discovery = fields["discovery"];
    camera.mainUrl = fields["main"];
    camera.subUrl = fields["sub"];
    camera.user = fields["user"];
    camera.password = fields["password"];
    camera.mac = fields["mac"];
    return camera;
}

} // namespace

std::map<std::string, std::string> parseFlatJson(const std::string &line)
{
    std::map<std::string, std::string> fields;
    std::size_t at = line.find('"');
    while (at != std::string::npos && at < line.size()) {
        const std::string key = readToken(line, at);
        at = line.find_first_not_of(": ", at);
        if (at == std::string::npos)
            break;
        fields[key] = readToken(line, at);
        at = line.find('"', at);
    }
    return fields;
}

std::string SimulatedCamera::urlWithLogin(const std::string &url) const
{
    const std::string scheme = "rtsp://";
    return scheme + user + ":" + password + "@" + url.substr(scheme.size());
}

CamsimProcess::CamsimProcess(const std::vector<std::string> &arguments,
                             std::chrono::milliseconds deadline)
{
    start(arguments);
    try {
        const Clock::time_point end = Clock::now() + deadline;
        for (std::size_t i = 0; i < countOf(arguments); ++i) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
            const auto fields = parseFlatJson(readLine(m_output, m_pendingOutput, left));
            m_controlPort = toInt(fields.at("control_port"));
            m_cameras.push_back(parseCamera(fields));
        }
        if (!m_cameras.empty())
            connectControl();
    } catch (...) {
        end(SIGKILL);
        throw;
    }
}

CamsimProcess::~CamsimProcess()
{
    end(SIGTERM);
}

void CamsimProcess::start(const std::vector<std::string> &arguments)
{
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    // Closed in every other process that this one starts, or camsim would outlive us.
    if (pipe2(input.data(), O_CLOEXEC) != 0 || pipe2(output.data(), O_CLOEXEC) != 0)
        fail("no pipe");
    m_input = input[1];
    m_output = output[0];

    std::vector<std::string> words{CAMSIM_PATH, "--exit-with-stdin"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    const int error = posix_spawn(&m_pid, CAMSIM_PATH, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    if (error != 0) {
        m_pid = -1;
        fail("cannot start " CAMSIM_PATH);
    }
}

std::string CamsimProcess::readLine(int handle, std::string &pending,
                                    std::chrono::milliseconds deadline)
{
    const Clock::time_point end = Clock::now() + deadline;
    while (true) {
        const std::size_t newline = pending.find('\n');
        if (newline != std::string::npos) {
            std::string line = pending.substr(0, newline);
            pending.erase(0, newline + 1);
            return line;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd wait{handle, POLLIN, 0};
        const int ready = left.count() > 0 ? poll(&wait, 1, static_cast<int>(left.count())) : 0;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            fail("no answer in time");
        std::array<char, 4096> buffer;
        const ssize_t count = read(handle, buffer.data(), buffer.size());
        if (count <= 0)
            fail("ended early");
        pending.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

void CamsimProcess::connectControl()
{
    m_control = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(static_cast<std::uint16_t>(m_controlPort));
    name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(m_control, reinterpret_cast<const sockaddr *>(&name), sizeof name) != 0)
        fail("no control connection");
}

std::string CamsimProcess::control(const std::string &line)
{
    const std::string text = line + "\n";
    if (send(m_control, text.data(), text.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(text.size()))
        fail("control connection lost");
    return readLine(m_control, m_pendingControl, std::chrono::seconds(60));
}

bool CamsimProcess::tell(int camera, const std::string &command)
{
    return control(std::to_string(camera) + " " + command).starts_with("OK");
}

std::map<std::string, std::string> CamsimProcess::status(int camera)
{
    return parseFlatJson(control(std::to_string(camera) + " status"));
}

long CamsimProcess::statusNumber(const std::string &key, int camera)
{
    return std::atol(status(camera)[key].c_str());
}

void CamsimProcess::kill()
{
    end(SIGKILL);
}

void CamsimProcess::end(int signal)
{
    if (m_pid > 0) {
        ::kill(m_pid, signal);
        // A process that does not end must not block the test.
        const Clock::time_point limit = Clock::now() + std::chrono::seconds(20);
        int status = 0;
        while (waitpid(m_pid, &status, WNOHANG) == 0) {
            if (Clock::now() > limit) {
                ::kill(m_pid, SIGKILL);
                waitpid(m_pid, &status, 0);
                break;
            }
            poll(nullptr, 0, 5);
        }
        m_pid = -1;
    }
    for (int *handle : {&m_input, &m_output, &m_control}) {
        if (*handle >= 0)
            close(*handle);
        *handle = -1;
    }
}

} // namespace zelvaro::test
