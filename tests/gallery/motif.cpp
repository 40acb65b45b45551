#include "tests/gallery/motif.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace gallery {

namespace {

// All painting is done on a sheet of this size and scaled.
constexpr QRectF sheet(0, 0, 160, 90);

struct Light
{
    QColor skyTop;
    QColor skyBottom;
    QColor ground;
    QColor wall;
    QColor leaf;
};

const Light lights[] = {
    {{108, 160, 208}, {214, 230, 240}, {126, 148, 104}, {206, 188, 160}, {74, 112, 66}}, // noon
    {{72, 84, 132}, {240, 176, 128}, {92, 92, 84}, {164, 132, 118}, {48, 70, 58}},       // dusk
    {{40, 44, 50}, {112, 116, 120}, {88, 92, 94}, {158, 160, 162}, {62, 66, 68}},        // infrared
    {{170, 182, 192}, {226, 230, 232}, {150, 152, 146}, {188, 190, 190}, {92, 112, 98}}, // fog
};

void paintTree(QPainter &painter, qreal x, qreal foot, qreal height, const QColor &leaf)
{
    painter.fillRect(QRectF(x - 1.2, foot - height * 0.4, 2.4, height * 0.4), leaf.darker(150));
    painter.setBrush(leaf);
    painter.drawEllipse(QPointF(x, foot - height * 0.65), height * 0.3, height * 0.36);
    painter.setBrush(leaf.lighter(115));
    painter.drawEllipse(QPointF(x - height * 0.07, foot - height * 0.73), height * 0.2,
                        height * 0.22);
}

void paintHouse(QPainter &painter, const QRectF &wall, const Light &light)
{
    painter.fillRect(wall, light.wall);
    painter.setBrush(light.wall.darker(170));
    painter.drawPolygon(QPolygonF({wall.topLeft() + QPointF(-4, 0),
                                   QPointF(wall.center().x(), wall.top() - wall.height() * 0.45),
                                   wall.topRight() + QPointF(4, 0)}));
    const QRectF door(wall.center().x() - 5, wall.bottom() - 20, 10, 20);
    painter.fillRect(door, light.wall.darker(230));
    for (const qreal x : {wall.left() + 6, wall.right() - 16})
        painter.fillRect(QRectF(x, wall.top() + 8, 10, 9), light.skyBottom.lighter(108));
}

void paintCar(QPainter &painter, const QPointF &at, const QColor &colour)
{
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(at.x(), at.y() - 9, 34, 7), 2, 2);
    painter.drawRoundedRect(QRectF(at.x() + 7, at.y() - 15, 19, 8), 3, 3);
    painter.setBrush(QColor(40, 42, 46));
    painter.drawEllipse(at + QPointF(8, -2), 3.2, 3.2);
    painter.drawEllipse(at + QPointF(26, -2), 3.2, 3.2);
}

void paintPath(QPainter &painter, qreal horizon, const QColor &ground)
{
    painter.setBrush(ground.lighter(128));
    painter.drawPolygon(QPolygonF({{76, horizon}, {84, horizon}, {118, 90}, {42, 90}}));
}

} // namespace

QImage motif(int number, QSize size)
{
    const Light &light = lights[number % 4];
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size.width() / sheet.width(), size.height() / sheet.height());
    painter.setPen(Qt::NoPen);

    const qreal horizon = 48 + number * 7 % 12;
    QLinearGradient sky(0, 0, 0, horizon);
    sky.setColorAt(0, light.skyTop);
    sky.setColorAt(1, light.skyBottom);
    painter.fillRect(sheet, sky);
    QLinearGradient ground(0, horizon, 0, 90);
    ground.setColorAt(0, light.ground.lighter(112));
    ground.setColorAt(1, light.ground.darker(125));
    painter.fillRect(QRectF(0, horizon, 160, 90 - horizon), ground);

    paintPath(painter, horizon, light.ground);
    if (number % 3 != 2)
        paintHouse(painter, QRectF(28 + number * 23 % 50, horizon - 24, 62, 34), light);
    for (int tree = 0; tree < 2 + number % 3; ++tree)
        paintTree(painter, 12 + (number * 31 + tree * 47) % 140, horizon + 8 + tree * 3,
                  26 + (number + tree) % 3 * 8, light.leaf);
    if (number % 3 != 0)
        paintCar(painter, {20.0 + number * 37 % 90, 84},
                 QColor::fromHsv(number * 83 % 360, number % 4 == 2 ? 0 : 110, 150));
    return image;
}

} // namespace gallery
