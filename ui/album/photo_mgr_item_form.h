#pragma once

#include "ui/common/tile_form.h"

#include <memory>

namespace Ui {
class CPhotoMgrItemForm;
}

/// One photo or recording of the album: its picture, its name, and buttons that open and delete it.
/// GUI thread only.
class CPhotoMgrItemForm : public zelvaro::TileForm
{
    Q_OBJECT

public:
    /// When the child widgets are made. An album of thousands makes only those that can be seen.
    enum class Content
    {
        AtOnce,
        WhenNear
    };

    /// Size of every tile, in pixels.
    static constexpr int tileWidth = 199;
    static constexpr int tileHeight = 188;

    explicit CPhotoMgrItemForm(QWidget *parent = nullptr, Content content = Content::AtOnce);
    ~CPhotoMgrItemForm() override;

    void setItem(const QString &fileName, const QString &fullPath);
    const QString &fileName() const { return m_fileName; }
    const QString &fullPath() const { return m_fullPath; }

    /// Gives the tile its picture: the photo itself, or in video mode the still next to the
    /// recording. A tile that is not near shows it when it comes near.
    void setThumbnail(bool videoMode);
    bool hasThumbnail() const { return !m_thumbPath.isEmpty(); }

    /// Whether the tile can be seen, or nearly so. Only such a tile is visible and holds a picture;
    /// one that comes near waits for loadThumbnail.
    void setNear(bool isNear);
    bool isNear() const { return m_near; }
    /// The picture has been given, is wanted, and not there yet.
    bool isThumbnailDue() const { return m_near && hasThumbnail() && !m_thumbShown; }
    /// Takes as long as decoding a picture. Does nothing when it is not due.
    void loadThumbnail();

signals:
    void deletePhoto(CPhotoMgrItemForm *item);
    void playPhoto(CPhotoMgrItemForm *item);

public slots:
    void slotDelete();
    void slotPlay();

protected:
    void openItem() override { slotPlay(); }
    void deleteItem() override { slotDelete(); }
    void showFocus(bool focused) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void build();

    std::unique_ptr<Ui::CPhotoMgrItemForm> m_ui; // null until the content is made
    QString m_fileName;
    QString m_fullPath;
    QString m_thumbPath; // empty until the thumbnail was given
    bool m_near;
    bool m_thumbShown = false;
};
