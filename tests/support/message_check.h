#pragma once

#include "ui/common/message_box.h"

#include <QIcon>
#include <QLabel>
#include <QtTest>

/// Checks that a window is the message box with these texts and buttons, and the icon of the kind:
/// errors and questions have one. Needs the resources.
inline void expectMessage(QWidget *window, CMessageBox::Kind kind, const QString &title,
                          const QString &text, bool withCancel)
{
    QVERIFY2(qobject_cast<CMessageBox *>(window), window->metaObject()->className());
    QCOMPARE(window->findChild<QLabel *>("labelTitle")->text(), title);
    QCOMPARE(window->findChild<QLabel *>("labelMessage")->text(), text);
    QVERIFY(window->findChild<QWidget *>("btnOk")->isVisible());
    QCOMPARE(window->findChild<QWidget *>("btnCancel")->isVisible(), withCancel);

    QString icon;
    if (kind == CMessageBox::Error)
        icon = QStringLiteral(":/images/icon/error.png");
    else if (kind == CMessageBox::Question)
        icon = QStringLiteral(":/images/icon/question.png");
    const auto *label = window->findChild<QLabel *>("labelIcon");
    QCOMPARE(label->isHidden(), icon.isEmpty());
    QCOMPARE(label->pixmap(Qt::ReturnByValue).toImage(),
             icon.isEmpty() ? QImage() : QIcon(icon).pixmap(48, 48).toImage());
}
