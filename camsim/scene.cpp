#include "camsim/scene.h"

#include "camsim/timecode.h"

#include <array>
#include <cmath>

namespace camsim {

namespace {

struct Rgb
{
    double r, g, b;
};

enum class Vehicle
{
    Balloon,
    Boat,
    Car,
    Train,
    Bird,
    Sledge
};

struct Landscape
{
    Rgb skyTop, skyBottom, light, farHills, nearHills, ground, vehicle;
    double lightX, lightY;
    Vehicle kind;
};

const std::array<Landscape, Scene::count> landscapes{{
    {{.25, .52, .86},
     {.80, .91, .98},
     {1, .95, .72},
     {.47, .65, .58},
     {.34, .58, .36},
     {.45, .70, .34},
     {.89, .32, .25},
     .78,
     .20,
     Vehicle::Balloon},
    {{.98, .55, .35},
     {1, .86, .62},
     {1, .97, .85},
     {.42, .35, .53},
     {.28, .30, .48},
     {.16, .33, .52},
     {.97, .97, .95},
     .30,
     .44,
     Vehicle::Boat},
    {{.06, .08, .20},
     {.22, .25, .45},
     {.95, .95, .88},
     {.12, .14, .28},
     {.08, .10, .20},
     {.15, .16, .20},
     {.95, .75, .20},
     .70,
     .18,
     Vehicle::Car},
    {{.42, .60, .75},
     {.95, .90, .78},
     {1, .98, .90},
     {.68, .55, .45},
     {.60, .42, .30},
     {.78, .62, .40},
     {.20, .45, .60},
     .20,
     .22,
     Vehicle::Train},
    {{.55, .78, .90},
     {.96, .88, .90},
     {1, .93, .80},
     {.62, .60, .78},
     {.45, .50, .66},
     {.52, .64, .52},
     {.20, .22, .30},
     .62,
     .30,
     Vehicle::Bird},
    {{.60, .70, .80},
     {.90, .94, .97},
     {1, 1, .95},
     {.80, .86, .92},
     {.70, .78, .86},
     {.93, .95, .98},
     {.75, .20, .22},
     .45,
     .16,
     Vehicle::Sledge},
}};

void setColour(cairo_t *cr, const Rgb &colour, double alpha = 1)
{
    cairo_set_source_rgba(cr, colour.r, colour.g, colour.b, alpha);
}

void paintHills(cairo_t *cr, const Rgb &colour, double base, double rise, double waves,
                double shift)
{
    setColour(cr, colour);
    cairo_move_to(cr, 0, 1);
    for (int i = 0; i <= 100; ++i) {
        const double x = i / 100.0;
        const double y = std::sin(x * waves + shift) + 0.45 * std::sin(x * waves * 2.3 + shift * 3);
        cairo_line_to(cr, x, base - rise * y);
    }
    cairo_line_to(cr, 1, 1);
    cairo_fill(cr);
}

/// Paints in a square of 1 by 1, which is stretched over the picture.
void paintLandscape(cairo_t *cr, const Landscape &land, int width, int height)
{
    cairo_scale(cr, width, height);
    cairo_pattern_t *sky = cairo_pattern_create_linear(0, 0, 0, 0.7);
    cairo_pattern_add_color_stop_rgb(sky, 0, land.skyTop.r, land.skyTop.g, land.skyTop.b);
    cairo_pattern_add_color_stop_rgb(sky, 1, land.skyBottom.r, land.skyBottom.g, land.skyBottom.b);
    cairo_set_source(cr, sky);
    cairo_paint(cr);
    cairo_pattern_destroy(sky);

    cairo_save(cr);
    cairo_translate(cr, land.lightX, land.lightY);
    cairo_scale(cr, static_cast<double>(height) / width, 1);
    for (const double radius : {0.13, 0.10, 0.07}) {
        setColour(cr, land.light, radius > 0.08 ? 0.25 : 1);
        cairo_arc(cr, 0, 0, radius, 0, 2 * M_PI);
        cairo_fill(cr);
    }
    cairo_restore(cr);

    paintHills(cr, land.farHills, 0.62, 0.07, 9, land.lightX * 7);
    paintHills(cr, land.nearHills, 0.71, 0.045, 6, land.lightX * 19 + 1);
    setColour(cr, land.ground);
    cairo_rectangle(cr, 0, 0.78, 1, 0.22);
    cairo_fill(cr);
    setColour(cr, {0, 0, 0}, 0.18);
    cairo_rectangle(cr, 0, 0.83, 1, 0.07);
    cairo_fill(cr);
}

void box(cairo_t *cr, double x, double y, double w, double h)
{
    cairo_rectangle(cr, x, y, w, h);
    cairo_fill(cr);
}

void disc(cairo_t *cr, double x, double y, double radius)
{
    cairo_arc(cr, x, y, radius, 0, 2 * M_PI);
    cairo_fill(cr);
}

void polygon(cairo_t *cr, std::initializer_list<std::array<double, 2>> points)
{
    for (const auto &[x, y] : points)
        cairo_line_to(cr, x, y);
    cairo_close_path(cr);
    cairo_fill(cr);
}

/// Paints in a field 2 wide and 1 high.
void paintVehicle(cairo_t *cr, Vehicle kind, const Rgb &colour)
{
    const Rgb dark{.12, .12, .15};
    const Rgb glass{.75, .88, .95};
    setColour(cr, colour);
    switch (kind) {
    case Vehicle::Balloon:
        disc(cr, 1, .36, .34);
        polygon(cr, {{.70, .52}, {1.30, .52}, {1.08, .80}, {.92, .80}});
        setColour(cr, {1, .85, .35});
        box(cr, .94, .03, .12, .72);
        setColour(cr, {.45, .30, .18});
        box(cr, .90, .86, .20, .13);
        break;
    case Vehicle::Boat:
        polygon(cr, {{.95, .05}, {.95, .68}, {.45, .68}});
        polygon(cr, {{1.02, .15}, {1.45, .68}, {1.02, .68}});
        setColour(cr, {.55, .25, .18});
        polygon(cr, {{.30, .74}, {1.65, .74}, {1.45, .96}, {.50, .96}});
        break;
    case Vehicle::Car:
        polygon(cr, {{.55, .42}, {.75, .12}, {1.35, .12}, {1.60, .42}});
        box(cr, .20, .42, 1.65, .36);
        setColour(cr, glass);
        polygon(cr, {{.68, .42}, {.80, .20}, {1.02, .20}, {1.02, .42}});
        polygon(cr, {{1.10, .42}, {1.10, .20}, {1.30, .20}, {1.46, .42}});
        setColour(cr, dark);
        disc(cr, .58, .80, .18);
        disc(cr, 1.48, .80, .18);
        break;
    case Vehicle::Train:
        box(cr, .02, .20, 1.25, .58);
        polygon(cr, {{1.30, .20}, {1.70, .20}, {1.96, .55}, {1.96, .78}, {1.30, .78}});
        setColour(cr, glass);
        for (int window = 0; window < 4; ++window)
            box(cr, .10 + .30 * window, .30, .20, .20);
        polygon(cr, {{1.48, .30}, {1.66, .30}, {1.80, .50}, {1.48, .50}});
        setColour(cr, dark);
        for (const double wheel : {.25, .55, .95, 1.50, 1.78})
            disc(cr, wheel, .86, .11);
        break;
    case Vehicle::Bird:
        cairo_set_line_width(cr, .09);
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
        for (const auto &[x, y, size] :
             {std::array{1.0, .45, .45}, std::array{.35, .70, .25}, std::array{1.7, .80, .2}}) {
            cairo_move_to(cr, x - size, y - size * .45);
            cairo_curve_to(cr, x - size / 2, y - size * .8, x - size / 6, y - size * .3, x, y);
            cairo_curve_to(cr, x + size / 6, y - size * .3, x + size / 2, y - size * .8, x + size,
                           y - size * .45);
            cairo_stroke(cr);
        }
        break;
    case Vehicle::Sledge:
        box(cr, .45, .55, 1.0, .16);
        disc(cr, .85, .38, .17);
        setColour(cr, dark);
        disc(cr, .85, .16, .12);
        box(cr, .30, .84, 1.40, .06);
        box(cr, .60, .70, .06, .16);
        box(cr, 1.25, .70, .06, .16);
        break;
    }
}

} // namespace

Scene::Scene(int index, std::string name, int width, int height, bool timeCode)
    : m_name(std::move(name))
    , m_width(width)
    , m_height(height)
    , m_timeCode(timeCode)
{
    const Landscape &land = landscapes[static_cast<std::size_t>(index % count)];
    m_background =
        Sprite(width, height, [&](cairo_t *cr) { paintLandscape(cr, land, width, height); });
    paintMovers(index % count);
}

void Scene::paintMovers(int index)
{
    const Landscape &land = landscapes[static_cast<std::size_t>(index)];
    const bool flies = land.kind == Vehicle::Balloon || land.kind == Vehicle::Bird;
    const int size = m_height / (flies ? 4 : 6);
    const Sprite vehicle(size * 2, size, [&](cairo_t *cr) {
        cairo_scale(cr, size, size);
        paintVehicle(cr, land.kind, land.vehicle);
    });
    const Sprite cloud(size * 2, size, [&](cairo_t *cr) {
        cairo_scale(cr, size, size);
        setColour(cr, {1, 1, 1}, 0.75);
        for (const auto &[x, y, radius] :
             {std::array{.5, .65, .25}, std::array{.9, .5, .33}, std::array{1.35, .6, .28}})
            cairo_arc(cr, x, y, radius, 0, 2 * M_PI), cairo_close_path(cr);
        cairo_fill(cr);
    });
    m_movers = {{cloud, 0.012, .22, 0, .15}, {cloud, 0.02, .34, .01, .7}};
    if (flies)
        m_movers.push_back({vehicle, 0.05, .42, .06, .4});
    else
        m_movers.push_back({vehicle, 0.11, .80, land.kind == Vehicle::Boat ? .012 : 0, .4});
}

void Scene::paintCaption(std::time_t clock)
{
    std::tm local{};
    localtime_r(&clock, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d  %H:%M:%S", &local);
    const double size = m_height / 20.0;
    m_caption = Sprite(m_width, static_cast<int>(size * 1.7), [&](cairo_t *cr) {
        cairo_set_source_rgba(cr, 0, 0, 0, 0.45);
        cairo_paint(cr);
        cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(cr, size);
        cairo_set_source_rgb(cr, 1, 1, 1);
        cairo_move_to(cr, size, size * 1.2);
        cairo_show_text(cr, m_name.c_str());
        cairo_text_extents_t extents;
        cairo_text_extents(cr, text.data(), &extents);
        cairo_move_to(cr, m_width - size - extents.x_advance, size * 1.2);
        cairo_show_text(cr, text.data());
    });
    m_captionTime = clock;
}

void Scene::draw(const PictureView &picture, double seconds, std::time_t clock,
                 std::uint32_t timeCodeMs)
{
    m_background.putOn(picture, 0, 0);
    for (const Mover &mover : m_movers) {
        // The way leads from just outside one edge to just outside the other.
        const double way = m_width + mover.sprite.width();
        const double done = std::fmod(mover.start + seconds * mover.speed, 1.0);
        const double y = mover.height + mover.swing * std::sin(seconds * 1.3);
        mover.sprite.putOn(picture, static_cast<int>(done * way) - mover.sprite.width(),
                           static_cast<int>(y * m_height) - mover.sprite.height() / 2);
    }
    if (clock != m_captionTime)
        paintCaption(clock);
    m_caption.putOn(picture, 0, m_height - m_caption.height());
    if (m_timeCode) {
        timecode::draw(picture.luma, picture.lumaStride, picture.cb, picture.cr,
                       picture.chromaStride, picture.width, picture.height, timeCodeMs);
    }
}

} // namespace camsim
