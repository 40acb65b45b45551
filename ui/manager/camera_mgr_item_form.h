#pragma once

#include "ui/common/tile_form.h"

#include <QDateTime>

#include <memory>

class CCamera;

namespace Ui {
class CCameraMgrItemForm;
}

/// One camera on the camera page: its latest picture, name, UID and state, and a menu. A tile is
/// taken away before its session is destroyed. GUI thread only.
class CCameraMgrItemForm : public zelvaro::TileForm
{
    Q_OBJECT

public:
    explicit CCameraMgrItemForm(QWidget *parent = nullptr);
    ~CCameraMgrItemForm() override;

    /// Shows the session (not owned) and follows its state and its picture.
    void setCamera(CCamera *camera);
    CCamera *camera() const { return m_camera; }

    /// Whether the tile is in the visible part, or next to it. One that is not is hidden unless it
    /// has the focus, and holds no picture: each widget of a tile is a window of the window system.
    /// Its place in the grid stays.
    void setNear(bool isNear);
    /// The last of the tile's widgets that the Tab key reaches.
    QWidget *lastInTabOrder() const;

signals:
    void deleteCamera(CCameraMgrItemForm *item);
    void playCamera(CCameraMgrItemForm *item);
    void modifyCamera(CCameraMgrItemForm *item);
    void motionCamera(CCameraMgrItemForm *item);
    void rebootCamera(CCameraMgrItemForm *item);

public slots:
    void slotDelete();
    void slotPlay();
    void slotMenu();
    void slotModify();
    void slotMotion();
    void slotReboot();
    void slotCameraStatusChanged();
    void slotCameraThumbChanged();

protected:
    void openItem() override { slotPlay(); }
    void deleteItem() override { slotDelete(); }
    void showFocus(bool focused) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void buildMenu();
    void showTexts();
    void showThumb();
    void showStateTip();
    /// All that is known of the camera, in lines.
    QString details() const;

    std::unique_ptr<Ui::CCameraMgrItemForm> m_ui;
    CCamera *m_camera = nullptr;
    QString m_defaultPicture; // style sheet of the picture frame without a thumbnail
    QString m_details;        // of the state
    bool m_near = true;
    bool m_connected = false;
    QDateTime m_since;       // it is not connected; null while that is not known
    QDateTime m_pictureTime; // null without a picture
};
