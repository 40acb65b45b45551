#include "app/main_form.h"
#include "tests/gallery/stage.h"
#include "ui/common/busy_dialog.h"
#include "ui/common/message_box.h"

namespace gallery {

namespace {

Scene message(const QString &name, int kind, const QString &title, const QString &text,
              QMessageBox::StandardButtons buttons)
{
    return {
        QStringLiteral("dialogs"), name, Scene::Kind::Dialog,
        [=](Stage &stage) {
            return Subject{stage.show<CMessageBox>(kind, title, text, buttons, &stage.open()), {}};
        }};
}

} // namespace

QVector<Scene> dialogScenes()
{
    const auto both = QMessageBox::Ok | QMessageBox::Cancel;
    return {
        message(QStringLiteral("message-information"), CMessageBox::Information,
                QStringLiteral("info"),
                QStringLiteral("Some error happens. Please wait a few minutes and re-try."),
                QMessageBox::Ok),
        message(QStringLiteral("message-warning"), CMessageBox::Warning, QStringLiteral("Warning"),
                QStringLiteral("By changing view your recording will be stop."), both),
        message(QStringLiteral("message-error"), CMessageBox::Error, QStringLiteral("Error"),
                QStringLiteral("Please input UID."), QMessageBox::Ok),
        message(QStringLiteral("message-question"), CMessageBox::Question,
                QStringLiteral("Question"), QStringLiteral("Delete photo?"), both),
        message(QStringLiteral("message-folder"), CMessageBox::Error, QStringLiteral("Error"),
                QStringLiteral("Nothing can be written to this folder. Please choose another one."),
                QMessageBox::Ok),
        message(QStringLiteral("message-text-too-long"), CMessageBox::Error,
                QStringLiteral("Error"),
                QStringLiteral("Path: too long to be saved. Please enter a shorter text."),
                QMessageBox::Ok),
        message(QStringLiteral("message-not-deleted"), CMessageBox::Error, QStringLiteral("Error"),
                QStringLiteral("\"20240305_070809_0002.mp4\" cannot be deleted."), QMessageBox::Ok),
        message(QStringLiteral("message-long"), CMessageBox::Error, QStringLiteral("Error"),
                QStringLiteral("Set configuration failed. Please check your configuration and try "
                               "again. The camera at rtsp://camera-17.stables.long-house-name."
                               "example.lan:8554/live did not answer within fifteen seconds."),
                QMessageBox::Ok),
        {QStringLiteral("dialogs"), QStringLiteral("busy"), Scene::Kind::Waiting,
         [](Stage &stage) {
             return Subject{
                 stage.show<zelvaro::BusyDialog>(
                     QStringLiteral("Please wait for query motion information..."), &stage.open()),
                 {}};
         }},
    };
}

} // namespace gallery
