#pragma once

#include <QDialog>
#include <QMessageBox>

#include <memory>

namespace Ui {
class CMessageBox;
}

/// The system's one message and confirmation dialog: frameless, modal through exec(), which
/// returns 1 for OK and 0 for Cancel or Escape. Enter presses OK where it is shown.
/// GUI thread only.
class CMessageBox : public QDialog
{
    Q_OBJECT

public:
    enum Kind
    {
        Information = 1,
        Warning = 2,
        Error = 3,
        Question = 4
    };

    /// kind: Error and Question have an icon, every other number has none. buttons: OK and Cancel
    /// are shown when they are in the set.
    CMessageBox(int kind, const QString &title, const QString &text,
                QMessageBox::StandardButtons buttons, QWidget *parent = nullptr);
    ~CMessageBox() override;

private slots:
    void slotOK();
    void slotClose();

private:
    void fitToText(const QString &text);

    std::unique_ptr<Ui::CMessageBox> m_ui;
};
