#pragma once

#include "camera/camera.h"
#include "resources/resources.h"
#include "tests/support/page_recorder.h"
#include "tests/support/registry.h"
#include "ui/manager/add_button_form.h"
#include "ui/manager/camera_mgr_frame.h"
#include "ui/manager/camera_mgr_item_form.h"

#include <QGridLayout>

#include <memory>

/// The place of a widget in the grid.
struct Cell
{
    int row = -1;
    int column = -1;
    bool operator==(const Cell &) const = default;
};

/// The camera page's grid over a registry and a main window of the test's own.
class FrameTest : public QObject
{
    Q_OBJECT

protected:
    static constexpr int deadline = 20000; // milliseconds

    /// The page with so many cameras.
    void build(int cameras)
    {
        m_registry->addMany(cameras);
        build();
    }
    /// The page with the cameras that the registry has.
    void build()
    {
        m_registry->start();
        m_frame = std::make_unique<CCameraMgrFrame>();
        m_frame->fill();
    }
    Cell cellOf(QWidget *widget) const
    {
        auto *grid = qobject_cast<QGridLayout *>(m_frame->layout());
        Cell cell;
        int rows = 0;
        int columns = 0;
        if (const int index = grid->indexOf(widget); index >= 0)
            grid->getItemPosition(index, &cell.row, &cell.column, &rows, &columns);
        return cell;
    }
    CCameraMgrItemForm *tile(int index) const { return m_frame->tiles().at(index); }
    QWidget *addTile() const { return m_frame->findChild<CAddButtonForm *>(); }
    QStringList tileUids() const
    {
        QStringList uids;
        for (CCameraMgrItemForm *tile : m_frame->tiles())
            uids += tile->camera()->hostname();
        return uids;
    }

    std::unique_ptr<Registry> m_registry;
    std::unique_ptr<PageRecorder> m_host;
    std::unique_ptr<CCameraMgrFrame> m_frame;

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init()
    {
        m_registry = std::make_unique<Registry>();
        m_host = std::make_unique<PageRecorder>();
    }
    void cleanup()
    {
        m_frame.reset();
        m_host.reset();
        m_registry.reset();
    }
};
