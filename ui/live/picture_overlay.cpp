#include "ui/live/picture_overlay.h"

#include <QPainter>

#include <algorithm>

namespace zelvaro {

namespace {

// Of resources/art/palette.txt.
constexpr QColor plateColour(11, 16, 22);
constexpr QColor lineColour(58, 76, 92);
constexpr QColor textColour(220, 231, 240);
constexpr QColor recordColour(200, 48, 46);

// Pixels. Texts grow with the picture, so that a full screen is read from afar.
constexpr int smallestText = 11;
constexpr int largestText = 26;
constexpr int textPerHeight = 24; // a text is that part of the picture's height
constexpr int edge = 6;           // around the plates
constexpr int lineStep = 2;       // every second line is black over an old picture
constexpr int wrapped = Qt::AlignCenter | Qt::TextWordWrap;
constexpr int onOneLine = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine;

int padding(const QFontMetrics &metrics)
{
    return metrics.height() / 3;
}

} // namespace

PictureOverlay::PictureOverlay(QWidget *picture) : QWidget(picture)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_OpaquePaintEvent); // else what lies below would be painted with it
    layOut();
}

void PictureOverlay::setContent(const OverlayContent &content)
{
    if (m_content == content)
        return;
    m_content = content;
    layOut();
}

void PictureOverlay::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void PictureOverlay::layOut()
{
    QFont texts(QStringLiteral("Arial"));
    texts.setPixelSize(qBound(smallestText, height() / textPerHeight, largestText));
    setFont(texts);

    m_plates.clear();
    if (!m_content.name.isEmpty() || m_content.recording)
        addPlate(Qt::AlignLeft | Qt::AlignTop, m_content.name, m_content.recording);
    if (!m_content.clock.isEmpty())
        addPlate(Qt::AlignRight | Qt::AlignTop, m_content.clock, false);
    if (!m_content.notice.isEmpty())
        addPlate(Qt::AlignCenter, m_content.notice, false);
    setAccessibleDescription(m_content.notice);
    takeShape();
}

// The picture below was drawn by another connection and may be the last one: Qt, which would paint
// the ground where the shape ends, must not.
void PictureOverlay::takeShape()
{
    QWidget *picture = parentWidget();
    const bool disabled = picture->testAttribute(Qt::WA_UpdatesDisabled);
    picture->setAttribute(Qt::WA_UpdatesDisabled);
    const QRegion now = shape();
    setMask(now);
    picture->setAttribute(Qt::WA_UpdatesDisabled, disabled);
    update(now);
}

void PictureOverlay::addPlate(Qt::Alignment alignment, const QString &text, bool mark)
{
    const QFontMetrics metrics(font());
    const int gap = padding(metrics);
    const QRect room = rect().adjusted(edge, edge, -edge, -edge);
    const int markWidth = mark ? metrics.height() : 0;
    QString shown = text;
    QSize size;
    if (alignment == Qt::AlignCenter) {
        const QRect most(0, 0, std::max(1, room.width() - 2 * gap), std::max(1, height()));
        size = metrics.boundingRect(most, wrapped, text).size();
    } else {
        // Name and clock share the line.
        shown = metrics.elidedText(text, Qt::ElideRight,
                                   std::max(0, room.width() / 2 - 2 * gap - markWidth));
        size = {metrics.horizontalAdvance(shown), metrics.height()};
    }
    size += {2 * gap + markWidth, gap};
    QRect place(QPoint(0, 0), size);
    place.moveCenter(room.center());
    if (alignment & Qt::AlignLeft)
        place.moveLeft(room.left());
    if (alignment & Qt::AlignRight)
        place.moveRight(room.right());
    if (alignment & Qt::AlignTop)
        place.moveTop(room.top());
    m_plates.append(
        {place & rect(), shown, alignment == Qt::AlignCenter ? wrapped : onOneLine, mark});
}

QRegion PictureOverlay::shape() const
{
    if (m_content.isEmpty())
        return {-1, -1, 1, 1};
    QRegion shape;
    if (m_content.dimmed) {
        QVector<QRect> lines;
        lines.reserve(height() / lineStep + 1);
        for (int y = 0; y < height(); y += lineStep)
            lines.append({0, y, width(), 1});
        shape.setRects(lines.constData(), static_cast<int>(lines.size()));
    }
    for (const Plate &plate : m_plates)
        shape += plate.place;
    return shape;
}

void PictureOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    painter.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics metrics(font());
    const int gap = padding(metrics);
    for (const Plate &plate : m_plates) {
        painter.fillRect(plate.place, plateColour);
        painter.setPen(lineColour);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(plate.place.adjusted(0, 0, -1, -1));
        QRect texts = plate.place.adjusted(gap, 0, -gap, 0);
        if (plate.mark) {
            const int side = metrics.ascent() * 3 / 4;
            QRect mark(texts.left(), 0, side, side);
            mark.moveCenter({mark.center().x(), plate.place.center().y()});
            painter.setPen(Qt::NoPen);
            painter.setBrush(recordColour);
            painter.drawEllipse(mark);
            texts.setLeft(texts.left() + metrics.height());
        }
        painter.setPen(textColour);
        painter.drawText(texts, plate.flags, plate.text);
    }
}

} // namespace zelvaro
