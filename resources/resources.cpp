#include "resources/resources.h"

#include "resources/palette.h"

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>

// Q_INIT_RESOURCE declares a function of the global namespace, so it cannot be used in another one.
static void initTree()
{
    Q_INIT_RESOURCE(zelvaro);
}

namespace zelvaro {

namespace {

/// For what the base style draws itself, in the dialogs of Qt: the colours of our images.
QPalette basePalette()
{
    QString error;
    const Palette named = Palette::read(QStringLiteral(":/style/palette.txt"), &error);
    if (!error.isEmpty())
        return QApplication::palette();

    QPalette palette(named.colours[QStringLiteral("chrome-top")]);
    const auto set = [&](QPalette::ColorRole role, const char *name) {
        palette.setColor(role, named.colours[QLatin1String(name)]);
    };
    const auto setDisabled = [&](QPalette::ColorRole role, const char *name) {
        palette.setColor(QPalette::Disabled, role, named.colours[QLatin1String(name)]);
    };
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        set(role, "ink");
        setDisabled(role, "ink-disabled");
    }
    set(QPalette::Window, "chrome-top");
    set(QPalette::Button, "chrome-bottom");
    set(QPalette::Base, "white");
    setDisabled(QPalette::Base, "flat");
    set(QPalette::AlternateBase, "paper");
    set(QPalette::ToolTipBase, "white");
    set(QPalette::Highlight, "accent");
    set(QPalette::HighlightedText, "white");
    set(QPalette::Link, "accent");
    return palette;
}

} // namespace

void initResources()
{
    initTree();
}

QString applicationStyleSheet()
{
    QFile file(QStringLiteral(":/style/zelvaro.qss"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QIcon applicationIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128})
        icon.addFile(QStringLiteral(":/images/appicon/%1.png").arg(size), QSize(size, size));
    icon.addFile(QStringLiteral(":/images/appicon.png"), QSize(256, 256));
    return icon;
}

void applyLook()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    // Fonts of the same widths replace the two named ones where these are not installed.
    QFont::insertSubstitutions(QStringLiteral("Calibri"), {QStringLiteral("Carlito")});
    QFont::insertSubstitutions(QStringLiteral("Arial"), {QStringLiteral("Liberation Sans")});
    QApplication::setFont(QFont(QStringLiteral("Calibri"), 10));

    QApplication::setPalette(basePalette());
    QApplication::setWindowIcon(applicationIcon());
    qApp->setStyleSheet(applicationStyleSheet());
}

} // namespace zelvaro
