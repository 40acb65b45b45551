#pragma once

#include "platform/ndcp/ndcp.h"
#include "tests/gallery/scene.h"
#include "tests/settings/settings_home.h"

#include <QImage>

#include <memory>
#include <vector>

class CCamera;
class CMainForm;
class QDialog;

namespace gallery {

/// The program on which a scene plays: the main window over scripted libraries, with settings and
/// its own album. Everything a scene creates is destroyed with the stage.
class Stage
{
public:
    Stage();
    ~Stage();

    /// Registers a camera that the grid shows. Before open().
    void addCamera(const QString &name, const QString &uid = {});
    /// Registers that many, named by place: "Front door", "Garage" ...
    void addCameras(int count);
    /// Gives a registered camera the picture of its tile.
    void addThumbnail(int index);
    void addPhotos(int index, int count);
    /// Recordings with their stills; the clips themselves hold no video.
    void addClips(int index, int count);

    /// Starts the sessions and shows the main window.
    CMainForm &open();
    CMainForm &form() { return *m_form; }

    /// The scripted library answers the camera's probe.
    void connectCamera(int index);
    void connectAll();
    void refuseCamera(int index);
    void failCamera(int index);
    /// One report of each session, as answered probes make them.
    void report();
    /// Reports until the live views have come to rest; then every live surface gets a picture.
    void runStreams();

    /// Shows a dialog and keeps it.
    template <typename Dialog, typename... Args>
    Dialog *show(Args &&...args)
    {
        auto dialog = std::make_unique<Dialog>(std::forward<Args>(args)...);
        Dialog *shown = dialog.get();
        m_dialogs.push_back(std::move(dialog));
        shown->show();
        return shown;
    }
    /// A record that dialogs may point to.
    ndcp_device &record() { return m_record; }

    /// Finds a child of the main window, which must be there.
    template <typename Widget>
    Widget *find(const char *name)
    {
        return static_cast<Widget *>(findWidget(name, &Widget::staticMetaObject));
    }
    /// The tool tip of a widget of the main window, as it comes up when the pointer rests there.
    Subject tipOf(QWidget &widget);
    void click(const char *page, const char *button);
    CCamera *camera(int index) const;

    /// Paints a picture on a widget whenever it is painted.
    static void paintOver(QWidget *surface, const QImage &picture);

private:
    QObject *findWidget(const char *name, const QMetaObject *type) const;
    QString folder(int index) const;

    SettingsHome m_home;
    int m_registered = 0;
    std::unique_ptr<CMainForm> m_form;
    ndcp_device m_record{};
    std::vector<std::unique_ptr<QWidget>> m_dialogs;
};

} // namespace gallery
