#include "camsim/camsim_process.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace zelvaro::test {

namespace {

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
    std::vector<std::string> command{CAMSIM_PATH, "--exit-with-stdin"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    m_process = std::make_unique<ChildProcess>(
        command,
        ChildProcess::Options{.readsOutput = true, .holdsInput = true, .showsErrors = true});
    const auto end = std::chrono::steady_clock::now() + deadline;
    int controlPort = 0;
    for (std::size_t i = 0; i < countOf(arguments); ++i) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const std::string line = m_process->readLine(left);
        if (line.empty())
            fail("a camera did not come up");
        const auto fields = parseFlatJson(line);
        controlPort = toInt(fields.at("control_port"));
        m_cameras.push_back(parseCamera(fields));
    }
    if (!m_cameras.empty())
        connectControl(controlPort);
}

CamsimProcess::~CamsimProcess()
{
    if (m_control >= 0)
        close(m_control);
}

void CamsimProcess::connectControl(int port)
{
    const int handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(static_cast<std::uint16_t>(port));
    name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(handle, reinterpret_cast<const sockaddr *>(&name), sizeof name) != 0) {
        close(handle);
        fail("no control connection");
    }
    m_control = handle;
    m_answers = LineReader(handle);
}

std::string CamsimProcess::control(const std::string &line)
{
    const std::string text = line + "\n";
    if (send(m_control, text.data(), text.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(text.size()))
        fail("control connection lost");
    std::string answer = m_answers.next(std::chrono::seconds(60));
    if (answer.empty())
        fail("no answer");
    return answer;
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
    m_process->kill();
    m_process.reset();
}

} // namespace zelvaro::test
