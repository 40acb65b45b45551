#include "ui/common/desktop.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QSound>

namespace {

class SystemDesktop final : public Desktop
{
public:
    bool openUrl(const QUrl &url) override { return QDesktopServices::openUrl(url); }

    void playSound(const QString &file) override
    {
        if (QFileInfo(file).isFile())
            QSound::play(file);
    }

    QString chooseFolder(QWidget *parent, const QString &title, const QString &start) override
    {
        return QFileDialog::getExistingDirectory(parent, title, start, QFileDialog::ShowDirsOnly);
    }
};

Desktop *g_desktop = nullptr;

} // namespace

Desktop &desktop()
{
    static SystemDesktop system;
    return g_desktop ? *g_desktop : system;
}

void setDesktop(Desktop *desktop)
{
    g_desktop = desktop;
}
