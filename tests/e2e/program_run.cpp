#include "tests/e2e/program_run.h"

#include "app/main_form.h"
#include "app/program.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTimer>

ProgramRun::ProgramRun()
{
    qputenv("XDG_DATA_HOME", m_folder.filePath("data").toUtf8());
    qputenv("XDG_CONFIG_HOME", m_folder.filePath("config").toUtf8());
    qputenv("ZELVARO_DISCOVERY_MULTICAST", "0");
    QDir().mkpath(m_folder.filePath("data/Zelvaro"));
    QFile file(settingsFile());
    if (file.open(QIODevice::WriteOnly))
        file.write("ALBUMPATH=" + albumFolder().toUtf8() + "\n");
}

QString ProgramRun::settingsFile() const
{
    return m_folder.filePath("data/Zelvaro/Zelvaro.cfg");
}

QString ProgramRun::albumFolder() const
{
    return m_folder.filePath("Album");
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
    QByteArrayList targets;
    for (const auto &camera : cameras.cameras())
        targets += QByteArray::fromStdString(camera.discovery);
    qputenv("ZELVARO_DISCOVERY_TARGETS", targets.join(','));
}

void ProgramRun::registerCameras(const zelvaro::test::CamsimProcess &cameras, bool multiLive)
{
    makeFindable(cameras);
    QFile file(settingsFile());
    if (!file.open(QIODevice::Append))
        return;
    int index = 0;
    for (const auto &camera : cameras.cameras()) {
        file.write(QStringLiteral("[%1]\nTYPE=P2P\nHOSTNAME=%2\nUSERNAME=%3\nPASSWORD=%4\n"
                                  "NAME=\"%5\"\nMULTILIVE=%6\n")
                       .arg(index++)
                       .arg(QString::fromStdString(camera.uid), QString::fromStdString(camera.user),
                            QString::fromStdString(camera.password),
                            QString::fromStdString(camera.name))
                       .arg(int(multiLive))
                       .toUtf8());
    }
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
