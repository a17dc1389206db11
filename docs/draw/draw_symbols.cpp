#include "UI/Symbol.h"

#include <QGuiApplication>
#include <QPainter>
#include <QSvgRenderer>

#include <array>
#include <vector>

/// draw_symbols PICTURE                 a contact sheet of all symbols at the sizes in use, light and dark
/// draw_symbols --mark SVG PNG PNG2X    the menu-bar mark, 18 points, at one and two pixels a point
namespace {

using namespace pavonel;

constexpr int margin = 24;
constexpr int cell = 132;
constexpr int columns = 6;

struct Ground {
    QColor paper;
    QColor ink;
    QColor label;
};
const std::array grounds{Ground{"#F6F6F8", "#1C1C1E", "#6C6C72"}, Ground{"#28282B", "#F2F2F4", "#9A9AA1"}};

/// As a screen of one pixel a point shows it: drawn at that size, then enlarged without smoothing.
QImage asOnCoarseScreen(const QString &name, int side, const QColor &ink) {
    return Symbol::image(name, side, ink, 1).scaled(2 * side, 2 * side);
}

void drawCell(QPainter &painter, QPoint corner, const QString &name, const Ground &ground) {
    const auto put = [&](QImage image, int x, int y, int side) {
        image.setDevicePixelRatio(1);
        painter.drawImage(QRect(corner.x() + x, corner.y() + y, 2 * side, 2 * side), image);
    };
    put(asOnCoarseScreen(name, 18, ground.ink), 0, 0, 18);
    put(asOnCoarseScreen(name, 24, ground.ink), 48, 0, 24);
    put(Symbol::image(name, 18, ground.ink, 2), 0, 60, 18);
    put(Symbol::image(name, 24, ground.ink, 2), 48, 60, 24);
    put(Symbol::image(name, 64, ground.ink, 2), 110, 0, 64);
    painter.setPen(ground.label);
    painter.drawText(QRect(corner.x(), corner.y() + 132, 2 * cell - margin, 36), Qt::AlignLeft, name);
}

/// The mark as it is embedded, plain and enlarged.
void drawMarkCell(QPainter &painter, QPoint corner, const Ground &ground) {
    const auto put = [&](int ratio, QRect place) {
        QImage mark = Symbol::mark(ground.ink, ratio);
        mark.setDevicePixelRatio(1);
        painter.drawImage(place.translated(corner), mark);
    };
    put(1, {0, 0, 36, 36});
    put(2, {0, 60, 36, 36});
    put(2, {92, 0, 144, 144});
    painter.setPen(ground.label);
    painter.drawText(QRect(corner.x(), corner.y() + 132, 80, 36), Qt::AlignLeft,
                     QStringLiteral("(the mark)"));
}

QImage sheet() {
    const QStringList names = Symbol::names();
    const int rows = (static_cast<int>(names.size()) + columns) / columns;
    const int width = columns * 2 * cell + margin;
    const int height = rows * 190 + margin;
    QImage picture(width, 2 * height, QImage::Format_RGB32);
    QPainter painter(&picture);
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(15);
    painter.setFont(font);
    for (std::size_t i = 0; i < grounds.size(); ++i) {
        const int top = static_cast<int>(i) * height;
        painter.fillRect(0, top, width, height, grounds[i].paper);
        const auto corner = [top](int at) {
            return QPoint(margin + at % columns * 2 * cell, top + margin + at / columns * 190);
        };
        for (int at = 0; at < names.size(); ++at)
            drawCell(painter, corner(at), names[at], grounds[i]);
        drawMarkCell(painter, corner(static_cast<int>(names.size())), grounds[i]);
    }
    return picture;
}

bool drawMark(const QString &svg, const QString &file, int ratio) {
    QImage image(18 * ratio, 18 * ratio, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer renderer(svg);
    renderer.render(&painter);
    painter.end();
    return renderer.isValid() && image.save(file);
}

} // namespace

int main(int argc, char **argv) {
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() == 5 && arguments[1] == QStringLiteral("--mark"))
        return drawMark(arguments[2], arguments[3], 1) && drawMark(arguments[2], arguments[4], 2) ? 0 : 1;
    if (arguments.size() == 2)
        return sheet().save(arguments[1]) ? 0 : 1;
    return 2;
}
