#include "resources/resources.h"

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>

// Q_INIT_RESOURCE declares a function of the global namespace, so it cannot stand in another one.
static void initTree()
{
    Q_INIT_RESOURCE(zelvaro);
}

namespace zelvaro {

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

    // Fonts of the same widths stand in where the two named ones are not installed.
    QFont::insertSubstitutions(QStringLiteral("Calibri"), {QStringLiteral("Carlito")});
    QFont::insertSubstitutions(QStringLiteral("Arial"), {QStringLiteral("Liberation Sans")});
    QApplication::setFont(QFont(QStringLiteral("Calibri"), 10));

    QApplication::setWindowIcon(applicationIcon());
    qApp->setStyleSheet(applicationStyleSheet());
}

} // namespace zelvaro
