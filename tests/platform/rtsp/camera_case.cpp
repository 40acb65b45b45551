#include "tests/platform/rtsp/camera_case.h"

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using Request = ScriptedCamera::Request;
using Connection = ScriptedCamera::Connection;

std::string base64(const base::Bytes &bytes)
{
    gchar *text = g_base64_encode(bytes.data(), bytes.size());
    std::string result(text);
    g_free(text);
    return result;
}

/// Parameter sets as in a description, each with something behind it.
std::string setsText(const CaseClip &clip, const base::Bytes &tail)
{
    std::string text;
    for (base::Bytes set : clip.sets) {
        set.insert(set.end(), tail.begin(), tail.end());
        text += (text.empty() ? "" : ",") + base64(set);
    }
    return text;
}

std::string transportName(const Request &request)
{
    const std::string transport = request.header("transport");
    if (transport.empty())
        return {};
    return transport.find("/TCP") == std::string::npos ? "udp" : "tcp";
}

std::string withLineEnds(const std::string &text)
{
    std::string result;
    for (const char c : text)
        result += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return result;
}

} // namespace

std::string CameraCase::key(const std::string &which, const std::string &otherwise) const
{
    const auto found = keys.find(which);
    return found == keys.end() ? otherwise : found->second;
}

std::vector<std::string> CameraCase::sends() const
{
    std::vector<std::string> all;
    std::istringstream words(key("sends"));
    for (std::string line; std::getline(words, line, ',');) {
        line.erase(0, line.find_first_not_of(' '));
        all.push_back(line);
    }
    return all;
}

CameraCase CameraCase::read(const std::string &path)
{
    CameraCase result;
    result.name = std::filesystem::path(path).stem().string();
    std::ifstream file(path);
    std::string section;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("== ")) {
            section = line.substr(3);
            result.answers[section];
        } else if (!section.empty()) {
            result.answers[section] += line + '\n';
        } else if (const size_t colon = line.find(':'); colon != std::string::npos) {
            const size_t value = line.find_first_not_of(' ', colon + 1);
            result.keys[line.substr(0, colon)] =
                value == std::string::npos ? std::string() : line.substr(value);
        }
    }
    return result;
}

std::vector<CameraCase> CameraCase::readAll(const std::string &folder)
{
    std::vector<CameraCase> all;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".txt")
            all.push_back(read(entry.path().string()));
    std::sort(all.begin(), all.end(),
              [](const CameraCase &a, const CameraCase &b) { return a.name < b.name; });
    return all;
}

CaseCamera::CaseCamera(const CameraCase &text, const std::string &folder)
    : m_case(text)
    , m_folder(folder)
    , m_clip(folder + "/media/" + text.key("video", "baseline.h264"))
{
    ScriptedCamera::Behaviour behaviour;
    behaviour.session = text.key("session", "12345678;timeout=60");
    behaviour.publicMethods =
        text.key("public", "OPTIONS, DESCRIBE, SETUP, TEARDOWN, PLAY, GET_PARAMETER");
    behaviour.script = [this](const Request &request, Connection &connection) {
        return answer(request, connection);
    };
    behaviour.media = [this](Connection &connection) {
        std::unique_lock lock(m_mutex);
        std::unique_ptr<CaseMedia> &media = m_media[connection.number()];
        if (!media)
            media = std::make_unique<CaseMedia>(m_clip, packing(), m_folder + "/media");
        CaseMedia &now = *media;
        lock.unlock();
        connection.setChannel(std::stoi(m_case.key("channel", "0")));
        now.send(connection);
    };
    m_camera = std::make_unique<ScriptedCamera>(behaviour);
}

CasePacking CaseCamera::packing() const
{
    CasePacking packing;
    packing.packets = m_case.key("packets", packing.packets);
    packing.markers = m_case.key("markers", packing.markers);
    packing.sets = m_case.key("sets", packing.sets);
    packing.times = m_case.key("times", packing.times);
    packing.additions = m_case.key("additions");
    packing.number = static_cast<uint16_t>(std::stoi(m_case.key("number", "40000")));
    packing.firstPicture = static_cast<size_t>(std::stoi(m_case.key("first-picture", "0")));
    packing.sound = m_case.key("sound");
    packing.soundAfter = static_cast<unsigned>(std::stoi(m_case.key("sound-after", "0")));
    return packing;
}

std::vector<std::string> CaseCamera::sent() const
{
    std::vector<std::string> all;
    for (const Request &request : m_camera->requests()) {
        // From the path on, where it is at this camera.
        std::string line = request.method + ' ';
        const std::string own = m_camera->url("");
        line += request.url.starts_with(own) ? request.url.substr(own.size()) : request.url;
        const std::string transport = transportName(request);
        if (!transport.empty())
            line += ' ' + transport;
        if (all.empty() || all.back() != line)
            all.push_back(line);
    }
    return all;
}

const std::string *CaseCamera::answerTo(const Request &request)
{
    const std::lock_guard lock(m_mutex);
    const int count = ++m_counts[request.method];
    for (const std::string &key : {request.method + ' ' + std::to_string(count),
                                   request.method + ' ' + transportName(request), request.method})
        if (const auto found = m_case.answers.find(key); found != m_case.answers.end())
            return &found->second;
    return nullptr;
}

std::string CaseCamera::value(const std::string &word, const Request &request,
                              Connection &connection) const
{
    if (word == "cseq")
        return request.header("cseq");
    if (word == "url")
        return request.url;
    if (word == "origin")
        return m_camera->url("");
    if (word == "transport") { // with its name, without the end of the line
        const std::string header = connection.transportFor(request);
        return header.substr(0, header.find('\r'));
    }
    if (word == "sprop")
        return setsText(m_clip, {});
    if (word == "sprop-start-code")
        return setsText(m_clip, {0, 0, 0, 1});
    if (word == "sprop-zeros")
        return setsText(m_clip, {0, 0, 0});
    if (word == "vps" || word == "sps" || word == "pps")
        return base64(m_clip.sets.at(word == "vps" ? 0 : word == "sps" ? 1 : 2));
    return '{' + word + '}';
}

std::string CaseCamera::filled(std::string text, const Request &request, Connection &connection)
{
    for (size_t at = text.find('{'); at != std::string::npos; at = text.find('{', at)) {
        const size_t end = text.find('}', at);
        if (end == std::string::npos)
            break;
        const std::string word = text.substr(at + 1, end - at - 1);
        if (word == "length") {
            at = end;
            continue;
        }
        const std::string now = value(word, request, connection);
        text.replace(at, end + 1 - at, now);
        at += now.size();
    }
    if (text.find("\r\n\r\n") == std::string::npos)
        text += "\r\n";
    const size_t body = text.find("\r\n\r\n", text.find("RTSP/"));
    const size_t length = text.find("{length}");
    if (body != std::string::npos && length != std::string::npos)
        text.replace(length, 8, std::to_string(text.size() - body - 4));
    return text;
}

bool CaseCamera::answer(const Request &request, Connection &connection)
{
    const std::string *text = answerTo(request);
    if (!text || text->starts_with("!good"))
        return false;
    if (text->starts_with("!close"))
        connection.close();
    if (text->starts_with('!'))
        return true;
    const std::string all = filled(withLineEnds(*text), request, connection);
    connection.write(all);
    const std::string status = all.substr(0, all.find("\r\n"));
    if (request.method == "PLAY" && status.find(" 200") != std::string::npos)
        connection.playLate(std::chrono::milliseconds(std::stoi(m_case.key("delay", "0"))));
    if (request.method == "TEARDOWN")
        connection.play(false);
    return true;
}
