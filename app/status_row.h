#pragma once

#include "app/disk_watch.h"

#include <QObject>
#include <QString>

class QLabel;

namespace zelvaro {

/// The text in the status row of the main window: what a page has to say, else what is wrong with
/// the settings file, else, on a strip of its own colour, how little room the album has left. GUI
/// thread only; the label is not owned and gets this as a child.
class StatusRow : public QObject
{
    Q_OBJECT

public:
    explicit StatusRow(QLabel *label);

    /// Empty: the page has nothing to say any more.
    void showPageText(const QString &text);
    DiskWatch &disk() { return m_disk; }

private:
    void fill();

    QLabel *m_label;
    DiskWatch m_disk;
    QString m_pageText;
};

} // namespace zelvaro
