#include "tests/e2e/program_run.h"

#include "app/main_form.h"
#include "app/program.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPixmap>
#include <QScreen>
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

void ProgramRun::makeFindable(const zelvaro::test::CamsimProcess &cameras)
{
    QByteArrayList targets;
    for (const auto &camera : cameras.cameras())
        targets += QByteArray::fromStdString(camera.discovery);
    qputenv("ZELVARO_DISCOVERY_TARGETS", targets.join(','));
}

void ProgramRun::registerCameras(const zelvaro::test::CamsimProcess &cameras)
{
    makeFindable(cameras);
    QFile file(settingsFile());
    if (!file.open(QIODevice::Append))
        return;
    int index = 0;
    for (const auto &camera : cameras.cameras()) {
        file.write(QStringLiteral("[%1]\nTYPE=P2P\nHOSTNAME=%2\nUSERNAME=%3\nPASSWORD=%4\n"
                                  "NAME=\"%5\"\nMULTILIVE=1\n")
                       .arg(index++)
                       .arg(QString::fromStdString(camera.uid), QString::fromStdString(camera.user),
                            QString::fromStdString(camera.password),
                            QString::fromStdString(camera.name))
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

bool PictureWatch::hasMoved()
{
    const QPoint corner = m_widget.mapToGlobal(QPoint(0, 0));
    const QImage now =
        m_widget.screen()
            ->grabWindow(0, corner.x(), corner.y(), m_widget.width(), m_widget.height())
            .toImage();
    if (m_first.size() != now.size())
        m_first = now; // the first look, or the window went to another size
    m_moved = m_moved || m_first != now;
    return m_moved;
}
