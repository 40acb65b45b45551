#pragma once

#include <QDialog>
#include <QPointer>

#include <array>
#include <memory>

class CCamera;
namespace Ui {
class Motion_Dialog;
}
namespace zelvaro {
class MotionWindowBox;
}

/// Modal dialog that reads and changes the four motion detection windows of a camera. The
/// constructor reads them at once, waiting behind the busy dialog. GUI thread only.
class Motion_Dialog : public QDialog
{
    Q_OBJECT

public:
    /// The session is not owned.
    Motion_Dialog(QWidget *parent, CCamera *camera);
    ~Motion_Dialog() override;

protected:
    /// Enter clicks the button that has the focus and does nothing anywhere else: there is no
    /// default button that would write to the camera.
    void keyPressEvent(QKeyEvent *event) override;

private slots:
    void slotQuery();
    void slotApply();
    void slotExit();

private:
    static constexpr int windowCount = 4;

    void setUpWindows();
    /// Sends one request for each window. False when the session no longer exists.
    bool run(const QString &text, const QStringList &requests);

    std::unique_ptr<Ui::Motion_Dialog> m_ui;
    QPointer<CCamera> m_camera;
    std::array<zelvaro::MotionWindowBox *, windowCount> m_windows{};
};
