#include "platform/base/login_limit.h"

#include <algorithm>

namespace base {
namespace {

constexpr std::chrono::minutes window(30);
constexpr std::size_t maxRefusals = 3;

} // namespace

std::size_t LoginLimit::recent(Time now) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<std::size_t>(
        std::count_if(m_refusals.begin(), m_refusals.end(),
                      [now](const auto &refusal) { return refusal.first + window > now; }));
}

bool LoginLimit::mayTry(Time now) const
{
    return recent(now) < maxRefusals;
}

bool LoginLimit::mayTryBeside(Time now) const
{
    return recent(now) + 1 < maxRefusals;
}

void LoginLimit::refused(const std::string &request, Time now)
{
    const std::lock_guard lock(m_mutex);
    m_refusals.emplace_back(now, request);
    if (m_refusals.size() > maxRefusals)
        m_refusals.pop_front();
}

void LoginLimit::accepted(const std::string &request)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_refusals,
                  [&request](const auto &refusal) { return refusal.second == request; });
}

void LoginLimit::userAsked()
{
    const std::lock_guard lock(m_mutex);
    if (m_refusals.size() == maxRefusals)
        m_refusals.pop_front();
}

void LoginLimit::noteLatin1()
{
    const std::lock_guard lock(m_mutex);
    m_takesLatin1 = true;
}

bool LoginLimit::takesLatin1() const
{
    const std::lock_guard lock(m_mutex);
    return m_takesLatin1;
}

} // namespace base
