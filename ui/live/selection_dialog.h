#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class SelectionDialog;
}

namespace zelvaro {

class SelectionFrame;

/// A frameless dialog in which the user ticks cameras. Run with exec; Escape and the close button
/// reject. GUI thread only.
class SelectionDialog : public QDialog
{
    Q_OBJECT

public:
    /// frame: the grid of cameras; the dialog takes it over.
    SelectionDialog(const QString &title, SelectionFrame *frame, QWidget *parent);
    ~SelectionDialog() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void slotOK();
    void slotClose();

protected:
    SelectionFrame *frame() const { return m_frame; }

private:
    void tellVisibleRows();

    std::unique_ptr<Ui::SelectionDialog> m_ui;
    SelectionFrame *m_frame;
};

} // namespace zelvaro
