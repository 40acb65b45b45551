#include "camsim/command_forms.h"

#include <charconv>

namespace camsim {

namespace {

constexpr const char *success = "000 Success\n";
constexpr const char *failed = "001 Failed\n";
constexpr const char *unknownCommand = "002 Unknown command\n";
constexpr const char *wrongParameter = "003 Wrong parameter\n";

struct Field
{
    const char *name;
    int low;
    int high;
};

constexpr std::array<Field, 7> motionFields{{{"ENABLE", 0, 1},
                                             {"LEFT", 0, 639},
                                             {"TOP", 0, 479},
                                             {"RIGHT", 0, 639},
                                             {"BOTTOM", 0, 479},
                                             {"THRESHOLD", 1, 100},
                                             {"SENSITIVITY", 1, 100}}};

/// The number in the text; -1 for anything else than digits.
int toNumber(const std::string &text)
{
    int value = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size() ? value : -1;
}

const std::map<std::string, std::string> fixedAnswers{
    {"getAutoReboot", "ENABLE=0\nDAY=0\nHOUR=3\nMINUTE=0\n"},
    {"getStorageAlarmRecord", "ENABLE=0\nSECONDS=30\n"},
    {"getStorageAlarmSnapshot", "ENABLE=0\nCOUNT=1\n"},
    {"getEmailAlarmSending", "ENABLE=0\nSERVER=\nPORT=25\n"},
};

} // namespace

CommandForms::CommandForms(CameraModel &camera)
    : m_camera(camera)
    , m_windows{{{1, 0, 0, 639, 479, 60, 70},
                 {0, 320, 0, 639, 240, 60, 70},
                 {0, 0, 240, 320, 479, 60, 70},
                 {0, 320, 240, 639, 479, 60, 70}}}
{
}

CommandForms::Parameters CommandForms::parse(std::string_view query)
{
    Parameters result;
    while (!query.empty()) {
        const std::string_view pair = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(query.size(), pair.size() + 1));
        const auto equal = pair.find('=');
        const auto value = equal == std::string_view::npos ? pair.size() : equal + 1;
        result.emplace_back(pair.substr(0, equal), pair.substr(value));
    }
    return result;
}

std::string CommandForms::answer(const std::string &command, const std::string &query)
{
    if (m_log.size() >= 100)
        m_log.erase(m_log.begin());
    m_log.push_back(query.empty() ? command : command + "?" + query);
    if (m_fault == Fault::Fail)
        return failed;
    if (command == "getMotion")
        return getMotion(parse(query));
    if (command == "setMotion")
        return setMotion(parse(query));
    if (command == "sysReboot") {
        m_camera.reboot();
        return success;
    }
    const auto fixed = fixedAnswers.find(command);
    return fixed == fixedAnswers.end() ? unknownCommand : success + fixed->second;
}

std::string CommandForms::getMotion(const Parameters &parameters) const
{
    if (parameters.size() != 1 || parameters[0].first != "WINDOW")
        return wrongParameter;
    const int number = toNumber(parameters[0].second);
    if (number < 1 || number > windows)
        return wrongParameter;
    std::string answer = std::string(success) + "WINDOW=" + std::to_string(number) + "\n";
    const auto &window = m_windows[static_cast<std::size_t>(number - 1)];
    for (std::size_t i = 0; i < motionFields.size(); ++i)
        answer += std::string(motionFields[i].name) + "=" + std::to_string(window[i]) + "\n";
    return answer;
}

std::string CommandForms::setMotion(const Parameters &parameters)
{
    if (parameters.size() != 1 + motionFields.size() || parameters[0].first != "WINDOW")
        return wrongParameter;
    const int number = toNumber(parameters[0].second);
    if (number < 1 || number > windows)
        return wrongParameter;
    std::array<int, fields> window{};
    for (std::size_t i = 0; i < motionFields.size(); ++i) {
        const Field &field = motionFields[i];
        window[i] = toNumber(parameters[i + 1].second);
        if (parameters[i + 1].first != field.name || window[i] < field.low ||
            window[i] > field.high)
            return wrongParameter;
    }
    m_windows[static_cast<std::size_t>(number - 1)] = window;
    return success;
}

} // namespace camsim
