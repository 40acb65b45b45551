#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>

class CCamera;

namespace Ui {
class CSelectCameraItemForm;
}

/// A camera with its picture, its name and a check mark, in a dialog that chooses cameras. A press
/// anywhere on it toggles the mark. GUI thread only.
class CSelectCameraItemForm : public QWidget
{
    Q_OBJECT

public:
    /// recordingMode: the mark says which cameras record, not which are shown.
    explicit CSelectCameraItemForm(bool recordingMode, QWidget *parent = nullptr);
    ~CSelectCameraItemForm() override;

    /// Shows the session's camera, and its mark as the record has it.
    void setCamera(CCamera *camera);
    CCamera *camera() const;

    /// Whether the tile is in the visible part of the grid, or next to it. One that is not holds no
    /// picture of its camera.
    void setNear(bool isNear);

    void setChecked(bool checked);
    bool isChecked() const { return m_checked; }
    /// Puts the mark into the camera's record.
    void apply() const;

signals:
    void clicked(CSelectCameraItemForm *tile);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void toggle();
    void showThumb();
    void showFocus(bool focused);

    std::unique_ptr<Ui::CSelectCameraItemForm> m_ui;
    const bool m_recordingMode;
    bool m_checked = false;
    bool m_near = true;
    QString m_defaultPicture; // style sheet of the picture frame without a thumbnail
    QPointer<CCamera> m_camera;
};
