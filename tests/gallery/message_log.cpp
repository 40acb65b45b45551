#include "tests/gallery/message_log.h"

#include <QRegularExpression>

namespace gallery {

namespace {

QStringList s_warnings;
QtMessageHandler s_before = nullptr;

bool isAboutTheLook(const QString &text)
{
    static const QRegularExpression subjects(
        QStringLiteral("pixmap|image|icon|style ?sheet|cannot open file|qpainter|qfont|layout"),
        QRegularExpression::CaseInsensitiveOption);
    // A style sheet says so on purpose where a menu's arrow is not wanted.
    return subjects.match(text).hasMatch() && !text.contains(QLatin1String("none.jpg"));
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtDebugMsg && type != QtInfoMsg && isAboutTheLook(text))
        s_warnings << QStringLiteral("warning: ") + text;
    if (s_before)
        s_before(type, context, text);
}

} // namespace

MessageLog::MessageLog() : m_before(qInstallMessageHandler(handle))
{
    s_before = m_before;
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(m_before);
}

QStringList MessageLog::take()
{
    QStringList taken;
    taken.swap(s_warnings);
    taken.removeDuplicates();
    return taken;
}

} // namespace gallery
