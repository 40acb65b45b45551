#include "ui/common/tool_tip.h"

namespace zelvaro {

QString plainToolTip(const QString &text)
{
    if (text.isEmpty())
        return {};
    return QStringLiteral("<p style=\"white-space:pre-wrap\">") + text.toHtmlEscaped() +
           QStringLiteral("</p>");
}

} // namespace zelvaro
