#include "platform/base/known_keys.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/text.h"

#include <glib/gstdio.h>

#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

namespace base {
namespace {

constexpr int ownerOnly = 0600;
constexpr std::size_t digestLength = 64;
/// More than any network has; a service that cannot be remembered is taken as new each time.
constexpr std::size_t maxKeys = 10'000;
constexpr std::size_t maxFileSize = std::size_t{4} * 1024 * 1024;

/// Host and port.
using Place = std::pair<std::string, uint16_t>;
using Keys = std::map<Place, std::string>;

bool isDigest(std::string_view text)
{
    return text.size() == digestLength &&
           std::all_of(
               text.begin(), text.end(), [](char c) { return g_ascii_isxdigit(c); });
}

void takeLine(std::string_view line, Keys &keys)
{
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string digest = lowerAscii(trimmed(line.substr(blank)));
    const CameraAddress address = parseUrl("https://" + std::string(line.substr(0, blank)));
    if (address.kind == CameraAddress::Kind::Host && address.hasPort && isDigest(digest) &&
        keys.size() < maxKeys)
        keys[{lowerAscii(address.endpoint.host), address.endpoint.port}] = digest;
}

Keys parseKeys(std::string_view text)
{
    Keys keys;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        takeLine(text.substr(0, end), keys);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return keys;
}

std::string textOf(const Keys &keys)
{
    std::string text;
    for (const auto &[place, digest] : keys) {
        const bool isIpv6 = place.first.find(':') != std::string::npos;
        text += (isIpv6 ? '[' + place.first + ']' : place.first) + ':' +
                std::to_string(place.second) + ' ' + digest + '\n';
    }
    return text;
}

} // namespace

struct KnownKeys::State
{
    mutable std::mutex mutex; ///< for all of it
    std::condition_variable saved;
    std::string path; ///< empty when nothing is written
    Keys known;
    Keys refused; ///< other keys, of places that are known
    bool isDirty = false;
    bool isSaving = false; ///< a thread is at it
};

KnownKeys &KnownKeys::instance()
{
    static KnownKeys keys;
    return keys;
}

KnownKeys::KnownKeys() : m_state(std::make_shared<State>()) {}

KnownKeys::~KnownKeys()
{
    waitUntilSaved();
}

bool KnownKeys::setFile(const std::string &path)
{
    waitUntilSaved();
    char *data = nullptr;
    gsize size = 0;
    GError *error = nullptr;
    const bool isRead = g_file_get_contents(path.c_str(), &data, &size, &error);
    const GErrorPtr guard(error);
    const GTextPtr text(data);
    const bool isMissing = g_error_matches(error, G_FILE_ERROR, G_FILE_ERROR_NOENT);
    const std::lock_guard lock(m_state->mutex);
    if ((!isRead && !isMissing) || size > maxFileSize) {
        g_warning("%s: the keys of the cameras cannot be read", path.c_str());
        m_state->path.clear();
        return false;
    }
    m_state->path = path;
    Keys keys = isRead ? parseKeys({data, size}) : Keys();
    keys.merge(m_state->known);
    m_state->isDirty = isRead ? keys.size() > parseKeys({data, size}).size() : !keys.empty();
    m_state->known = std::move(keys);
    if (m_state->isDirty)
        save(m_state);
    return true;
}

KnownKeys::Verdict KnownKeys::check(const Endpoint &service, const std::string &digest)
{
    const Place place(lowerAscii(service.host), service.port);
    const std::lock_guard lock(m_state->mutex);
    const auto found = m_state->known.find(place);
    if (found != m_state->known.end()) {
        m_state->refused.erase(place);
        if (found->second == digest)
            return Verdict::Known;
        if (isDigest(digest))
            m_state->refused[place] = digest;
        return Verdict::Changed;
    }
    if (!isDigest(digest))
        return Verdict::Changed;
    if (m_state->known.size() < maxKeys) {
        m_state->known[place] = digest;
        m_state->isDirty = true;
        save(m_state);
    }
    return Verdict::First;
}

bool KnownKeys::hasChanged(const std::string &host) const
{
    const std::string name = lowerAscii(host);
    const std::lock_guard lock(m_state->mutex);
    return std::any_of(m_state->refused.begin(), m_state->refused.end(),
                       [&name](const auto &each) { return each.first.first == name; });
}

bool KnownKeys::trustChanged(const std::string &host)
{
    const std::string name = lowerAscii(host);
    const std::lock_guard lock(m_state->mutex);
    const std::size_t count = std::erase_if(m_state->refused, [&](const auto &each) {
        const bool isOfHost = each.first.first == name;
        if (isOfHost)
            m_state->known[each.first] = each.second;
        return isOfHost;
    });
    m_state->isDirty = m_state->isDirty || count > 0;
    save(m_state);
    return count > 0;
}

/// Starts a thread that writes until nothing is new, unless one is at it. With the lock.
void KnownKeys::save(const std::shared_ptr<State> &state)
{
    if (state->path.empty() || !state->isDirty || state->isSaving)
        return;
    state->isSaving = true;
    std::thread([state] {
        pthread_setname_np(pthread_self(), "known-keys");
        std::unique_lock lock(state->mutex);
        while (std::exchange(state->isDirty, false)) {
            const std::string path = state->path;
            const std::string text = textOf(state->known);
            lock.unlock();
            GError *error = nullptr;
            g_file_set_contents_full(path.c_str(), text.data(), static_cast<gssize>(text.size()),
                                     G_FILE_SET_CONTENTS_CONSISTENT, ownerOnly, &error);
            const GErrorPtr guard(error);
            if (error)
                g_warning("%s: the keys of the cameras cannot be written: %s", path.c_str(),
                          error->message);
            lock.lock();
        }
        state->isSaving = false;
        state->saved.notify_all();
    }).detach();
}

void KnownKeys::waitUntilSaved()
{
    std::unique_lock lock(m_state->mutex);
    m_state->saved.wait(lock, [this] { return !m_state->isSaving; });
}

} // namespace base
