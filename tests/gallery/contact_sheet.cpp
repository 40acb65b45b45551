#include "tests/gallery/contact_sheet.h"

#include <QPainter>

namespace gallery {

namespace {

constexpr int gap = 12;
constexpr int labelHeight = 18;
const QColor paper(0xf4, 0xf6, 0xf8);
const QColor ink(0x27, 0x45, 0x5d);

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
    if (m_rows.isEmpty() || m_rows.last().name != row || m_rows.last().cells.size() == columns)
        m_rows.append({row, {}});
    QImage small = picture;
    small.setDevicePixelRatio(1);
    if (small.width() > m_cell.width() || small.height() > m_cell.height())
        small = small.scaled(m_cell, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    m_rows.last().cells.append({label, small});
}

QImage ContactSheet::paint() const
{
    int height = gap;
    for (const Row &row : m_rows)
        height += labelHeight + row.height() + gap;
    QImage sheet(gap + columns * (m_cell.width() + gap), height, QImage::Format_RGB32);
    sheet.fill(paper);
    QPainter painter(&sheet);
    painter.setPen(ink);
    painter.setFont(QFont(QStringLiteral("Arial"), 9));
    int y = gap;
    for (const Row &row : m_rows) {
        int x = gap;
        for (const Cell &cell : row.cells) {
            painter.drawText(QRect(x, y, m_cell.width(), labelHeight), Qt::AlignVCenter,
                             cell.label);
            painter.drawImage(x, y + labelHeight, cell.picture);
            x += m_cell.width() + gap;
        }
        y += labelHeight + row.height() + gap;
    }
    return sheet;
}

bool ContactSheet::save(const QString &file) const
{
    return paint().save(file, "PNG");
}

} // namespace gallery
