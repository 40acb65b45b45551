#pragma once

#include "camera/camera.h"
#include "tests/support/sessions_fixture.h"
#include "ui/common/album_files.h"
#include "ui/common/desktop.h"

#include <QCoreApplication>
#include <QStringList>
#include <QtTest>

/// Records what the pages request of the desktop.
class RecordingDesktop : public Desktop
{
public:
    RecordingDesktop() { setDesktop(this); }
    ~RecordingDesktop() override { setDesktop(nullptr); }

    bool openUrl(const QUrl &) override { return false; }
    void playSound(const QString &file) override
    {
        sounds << file;
        if (heard)
            heard();
    }
    QString chooseFolder(QWidget *, const QString &, const QString &) override { return {}; }

    QStringList sounds;
    std::function<void()> heard; ///< runs at each sound
};

/// Debug lines as they are written while this lives.
class LogLines
{
public:
    LogLines()
    {
        s_lines.clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { s_lines << text; });
    }
    ~LogLines() { qInstallMessageHandler(m_before); }

    QStringList starting(const QString &begin) const
    {
        return s_lines.filter(
            QRegularExpression(QLatin1Char('^') + QRegularExpression::escape(begin)));
    }

private:
    static inline QStringList s_lines;
    QtMessageHandler m_before;
};

/// Cameras whose scripted library the test drives, a standing clock, and the recording desktop.
class LiveFixture : public SessionsFixture
{
public:
    static constexpr int deadline = 20000; // ms

    /// End the sessions before violations are reset.
    ~LiveFixture()
    {
        endSessions();
        for (const std::string &violation : fake_cammgr::contractViolations())
            QFAIL(violation.c_str());
    }

    static CCamera *camera(int index = 0) { return CCameraList::instance().at(index); }
    static std::shared_ptr<fake_cammgr::Player> player(int index = 0)
    {
        return fake_cammgr::player(camera(index)->hostname().toStdString());
    }

    /// The camera's probe is answered; runs what hangs on it.
    static void connectCamera(int index = 0)
    {
        answer(
            index, [index] { player(index)->probeOk(); });
    }
    static void failCamera(int index = 0)
    {
        answer(
            index, [index] { player(index)->probeFailed(); });
    }

    /// One report of the session, as each answered probe makes one.
    static void report(int index = 0)
    {
        emit camera(index)->signalStateReport();
        QCoreApplication::sendPostedEvents();
    }
    static void reports(int count, int index = 0)
    {
        for (int i = 0; i < count; ++i)
            report(index);
    }

    static void change(const std::function<void(fake_cammgr::Script &)> &edit, int index = 0)
    {
        player(index)->change(edit);
    }
    static void setPlaying(bool playing, int index = 0)
    {
        change([playing](auto &script) { script.playing = playing; }, index);
    }

    /// Names of the player's calls in order, of those in wanted.
    static QStringList calls(const QStringList &wanted, int index = 0)
    {
        QStringList names;
        for (const fake_cammgr::Call &call : player(index)->calls()) {
            const QString name = QString::fromStdString(call.name);
            if (wanted.contains(name))
                names << name;
        }
        return names;
    }
    static int count(const char *name, int index = 0) { return player(index)->count(name); }
    /// First text argument of the last call; empty when there was none.
    static QString lastText(const char *name, int index = 0)
    {
        const auto call = player(index)->last(name);
        return call && !call->texts.empty() ? QString::fromStdString(call->texts.front())
                                            : QString();
    }
    /// First number argument of the last call; -1 when there was none.
    static int lastNumber(const char *name, int index = 0)
    {
        const auto call = player(index)->last(name);
        return call && !call->numbers.empty() ? static_cast<int>(call->numbers.front()) : -1;
    }

    QString folder(int index = 0) const
    {
        return CameraSettings::instance().albumPath() + QLatin1Char('/') +
               camera(index)->hostname();
    }

    zelvaro::Clock clock()
    {
        return [this] { return now; };
    }

    QDateTime now{QDate(2024, 3, 5), QTime(7, 8, 9)};
    RecordingDesktop desktop;

private:
    static void answer(int index, const std::function<void()> &answerProbe)
    {
        QSignalSpy reports(camera(index), &CCamera::signalStateReport);
        answerProbe();
        QTRY_VERIFY_WITH_TIMEOUT(!reports.isEmpty(), deadline);
        QCoreApplication::sendPostedEvents();
    }
};
