#include "tests/e2e/program_run.h"

#include "app/main_form.h"
#include "app/program.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTimer>

QString ProgramRun::settingsFile() const
{
    return QString::fromStdString(m_home.settingsFile());
}

QString ProgramRun::albumFolder() const
{
    return QString::fromStdString(m_home.albumFolder());
}

QByteArray ProgramRun::settings() const
{
    QFile file(settingsFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList ProgramRun::album(const std::string &uid) const
{
    return QDir(albumFolder() + "/" + QString::fromStdString(uid)).entryList(QDir::Files);
}

QStringList ProgramRun::albumFiles(const std::string &uid, const QString &pattern) const
{
    const QRegularExpression wanted(QRegularExpression::anchoredPattern(pattern));
    QStringList files;
    for (const QString &name : album(uid).filter(wanted))
        files << albumFolder() + "/" + QString::fromStdString(uid) + "/" + name;
    return files;
}

void ProgramRun::makeFindable(const zelvaro::test::CamsimProcess &cameras)
{
    zelvaro::test::ClientHome::makeFindable(cameras.cameras());
}

void ProgramRun::registerCameras(const zelvaro::test::CamsimProcess &cameras, bool multiLive) const
{
    m_home.registerCameras(cameras.cameras(), multiLive);
}

int ProgramRun::run(const std::function<void(CMainForm &)> &steps)
{
    int argc = 1;
    char name[] = "zelvaro";
    char *argv[] = {name, nullptr};
    return zelvaro::runProgram(argc, argv, [&steps](CMainForm &window) {
        // A failed check returns from the steps early: the program must end all the same.
        QTimer::singleShot(0, &window, [&steps, &window] {
            steps(window);
            QCoreApplication::exit(0);
        });
    });
}
