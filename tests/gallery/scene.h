#pragma once

#include <QString>
#include <QVector>

#include <functional>

class QWidget;

namespace gallery {

class Stage;

/// What a scene has put on the screen.
struct Subject
{
    QWidget *window = nullptr;   ///< belongs to the stage
    std::function<bool()> ready; ///< whether it shows all there is to see; none: at once
};

/// One page or dialog in one state.
struct Scene
{
    enum class Kind
    {
        Page,    ///< the main window, in every window size
        Dialog,  ///< a window of its own size, which Escape closes and Enter confirms
        Waiting, ///< a dialog that neither key closes
        Other    ///< a window without its own controls: full screen, menu
    };

    QString group; ///< the contact sheet that it is on
    QString name;  ///< unique; the name of its pictures
    Kind kind;
    std::function<Subject(Stage &)> build;
};

QVector<Scene> managerScenes();
QVector<Scene> liveScenes();
QVector<Scene> albumScenes();
QVector<Scene> setUpScenes();
QVector<Scene> dialogScenes();

} // namespace gallery
