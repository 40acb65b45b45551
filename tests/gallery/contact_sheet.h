#pragma once

#include <QImage>
#include <QString>
#include <QVector>

namespace gallery {

/// Small pictures of all scenes of one group on one sheet, with labels.
class ContactSheet
{
public:
    static constexpr int columns = 4;

    /// @param cell size in pixels into which each picture is fitted; it is never enlarged
    explicit ContactSheet(QSize cell) : m_cell(cell) {}

    /// Pictures of the same row name are side by side; a full row is continued in another one.
    void add(const QString &row, const QString &label, const QImage &picture);
    bool save(const QString &file) const;

private:
    struct Cell
    {
        QString label;
        QImage picture;
    };
    struct Row
    {
        QString name;
        QVector<Cell> cells;

        int height() const; ///< of the tallest picture
    };

    QImage paint() const;

    const QSize m_cell;
    QVector<Row> m_rows;
};

} // namespace gallery
