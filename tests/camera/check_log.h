#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

#include <cstring>

/// Collects what developers' checks report while it lives; other messages go their way. One at a
/// time; any thread may report.
class CheckLog
{
public:
    CheckLog()
    {
        s_log = this;
        s_before = qInstallMessageHandler(&CheckLog::handle);
    }
    ~CheckLog()
    {
        qInstallMessageHandler(s_before);
        s_log = nullptr;
    }
    CheckLog(const CheckLog &) = delete;
    CheckLog &operator=(const CheckLog &) = delete;

    /// The reports so far, each as `"<condition>" in <source>`; the next call begins with none.
    QStringList take()
    {
        const QMutexLocker lock(&m_mutex);
        return std::exchange(m_reports, {});
    }
    /// The conditions of these reports, all of the source Camera.
    static QStringList camera(const QStringList &conditions)
    {
        QStringList reports;
        for (const QString &condition : conditions)
            reports << QStringLiteral("\"%1\" in Camera").arg(condition);
        return reports;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        if (context.category && std::strcmp(context.category, "zelvaro.check") == 0) {
            const QMutexLocker lock(&s_log->m_mutex);
            s_log->m_reports << text;
        } else {
            s_before(type, context, text);
        }
    }

    inline static CheckLog *s_log = nullptr;
    inline static QtMessageHandler s_before = nullptr;
    QMutex m_mutex; ///< protects m_reports
    QStringList m_reports;
};
