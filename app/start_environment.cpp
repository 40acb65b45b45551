#include "app/start_environment.h"

#include <QtGlobal>

namespace zelvaro {

void StartEnvironment::set(const char *name, const QByteArray &value)
{
    if (!qEnvironmentVariableIsEmpty(name))
        return;
    m_before.emplace_back(name, qEnvironmentVariableIsSet(name)
                                    ? std::optional<QByteArray>(QByteArray(""))
                                    : std::nullopt);
    qputenv(name, value);
}

void StartEnvironment::restore()
{
    for (const auto &[name, value] : m_before)
        if (value)
            qputenv(name.constData(), *value);
        else
            qunsetenv(name.constData());
    m_before.clear();
}

} // namespace zelvaro
