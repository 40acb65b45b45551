#include "camera/developer_check.h"

#include <QLoggingCategory>

#include <cstdlib>

namespace zelvaro {
namespace {
Q_LOGGING_CATEGORY(lcCheck, "zelvaro.check")
} // namespace

bool developerCheck(bool ok, const char *condition, const char *source)
{
    if (ok)
        return true;
    qCWarning(lcCheck).noquote().nospace() << '"' << condition << "\" in " << source;
    if (qEnvironmentVariableIsSet("ZELVARO_ABORT_ON_CHECK"))
        std::abort();
    return false;
}

} // namespace zelvaro
