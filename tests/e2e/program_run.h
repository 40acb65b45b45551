#pragma once

#include "tests/e2e/real_input.h"
#include "tests/e2e/screen.h"
#include "tests/support/client_home.h"

#include <QString>
#include <QWidget>

#include <functional>

class CMainForm;

/// One run of the program with its own settings and album, in a folder that is removed with it.
class ProgramRun
{
public:
    /// Writes the settings file with these cameras and lets the libraries find them. All network
    /// traffic stays on loopback.
    /// multiLive: the grid of live pictures shows them.
    void registerCameras(const zelvaro::test::CamsimProcess &cameras, bool multiLive = true) const;
    /// Lets the libraries find these cameras; none is registered.
    static void makeFindable(const zelvaro::test::CamsimProcess &cameras);

    QString settingsFile() const;
    QString albumFolder() const;
    QByteArray settings() const;
    /// Files in the album folder of a camera, by name.
    QStringList album(const std::string &uid) const;
    /// Paths of those whose names match a regular expression.
    QStringList albumFiles(const std::string &uid, const QString &pattern) const;

    /// Runs the program from its entry to its end; steps run in its event loop, and when they
    /// return while it still runs it quits.
    /// @return its exit code
    int run(const std::function<void(CMainForm &)> &steps);

private:
    const zelvaro::test::ClientHome m_home;
};

/// The one child of a type with this object name that can be seen; null for none.
template <typename Widget>
Widget *visibleChild(const QWidget &parent, const char *name)
{
    for (Widget *child : parent.findChildren<Widget *>(QLatin1String(name)))
        if (child->isVisible())
            return child;
    return nullptr;
}
