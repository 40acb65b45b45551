#pragma once

#include <QStandardItemModel>
#include <QWidget>

#include <memory>

namespace Ui {
class CPhotoMgrForm;
}

/// The album page: the cameras on the left, and the photos, or the recordings, of the chosen one.
/// GUI thread only.
class CPhotoMgrForm : public QWidget
{
    Q_OBJECT

public:
    explicit CPhotoMgrForm(QWidget *parent = nullptr);
    ~CPhotoMgrForm() override;

    /// One row for each camera; emptied by the main window before it opens the page.
    QStandardItemModel &cameraModel() { return m_model; }
    /// Fills the camera list and shows the files of the first camera: true for recordings, false
    /// for photos.
    void open(bool videoMode);
    /// Lets go of tiles and pictures. open() brings them back.
    void leave();

public slots:
    void slotCameraItemChanged();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void emptyGrid();
    void followAlbumPath();

    std::unique_ptr<Ui::CPhotoMgrForm> m_ui;
    QStandardItemModel m_model;
    bool m_videoMode = false;
    bool m_isOpen = false;  // between open() and leave()
    bool m_isStale = false; // to be read again when it is shown
};
