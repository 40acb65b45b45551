#pragma once

#include <QByteArray>

#include <optional>
#include <utility>
#include <vector>

namespace zelvaro {

/// Environment variables that control how libraries start in this process and that the programs
/// started by it, such as the browser, must not inherit: restore() puts back what was there.
/// Used before other threads read the environment.
class StartEnvironment
{
public:
    StartEnvironment() = default;
    ~StartEnvironment() { restore(); }
    StartEnvironment(const StartEnvironment &) = delete;
    StartEnvironment &operator=(const StartEnvironment &) = delete;

    /// A variable that the user has set, other than to nothing, keeps the user's value.
    void set(const char *name, const QByteArray &value);
    void restore();

private:
    std::vector<std::pair<QByteArray, std::optional<QByteArray>>> m_before;
};

} // namespace zelvaro
