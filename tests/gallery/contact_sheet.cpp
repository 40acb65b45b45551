#include "tests/gallery/contact_sheet.h"

#include <QPainter>

namespace gallery {

namespace {

constexpr int Gap = 12;
constexpr int LabelHeight = 18;
const QColor Paper(0xf4, 0xf6, 0xf8);
const QColor Ink(0x27, 0x45, 0x5d);

} // namespace

int ContactSheet::Row::height() const
{
    int tallest = 0;
    for (const Cell &cell : cells)
        tallest = qMax(tallest, cell.picture.height());
    return tallest;
}

void ContactSheet::add(const QString &row, const QString &label, const QImage &picture)
{
    if (m_rows.isEmpty() || m_rows.last().name != row || m_rows.last().cells.size() == Columns)
        m_rows.append({row, {}});
    QImage small = picture;
    small.setDevicePixelRatio(1);
    if (small.width() > m_cell.width() || small.height() > m_cell.height())
        small = small.scaled(m_cell, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    m_rows.last().cells.append({label, small});
}

QImage ContactSheet::paint() const
{
    int height = Gap;
    for (const Row &row : m_rows)
        height += LabelHeight + row.height() + Gap;
    QImage sheet(Gap + Columns * (m_cell.width() + Gap), height, QImage::Format_RGB32);
    sheet.fill(Paper);
    QPainter painter(&sheet);
    painter.setPen(Ink);
    painter.setFont(QFont(QStringLiteral("Arial"), 9));
    int y = Gap;
    for (const Row &row : m_rows) {
        int x = Gap;
        for (const Cell &cell : row.cells) {
            painter.drawText(QRect(x, y, m_cell.width(), LabelHeight), Qt::AlignVCenter,
                             cell.label);
            painter.drawImage(x, y + LabelHeight, cell.picture);
            x += m_cell.width() + Gap;
        }
        y += LabelHeight + row.height() + Gap;
    }
    return sheet;
}

bool ContactSheet::save(const QString &file) const
{
    return paint().save(file, "PNG");
}

} // namespace gallery
