#include "UI/Palette.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace pavonel {

namespace {

constexpr double readable = 4.5;
constexpr double discernible = 3; // for shapes

double luminance(const QColor &colour) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor withAlpha(QColor colour, double alpha) {
    colour.setAlphaF(static_cast<float>(alpha));
    return colour;
}

QColor mixed(const QColor &colour, const QColor &towards, double share) {
    return blended(withAlpha(towards, share), colour);
}

bool reaches(double wanted, const QColor &ink, const std::vector<QColor> &surfaces) {
    return std::all_of(surfaces.begin(), surfaces.end(),
                       [&](const QColor &surface) { return contrast(ink, surface) >= wanted; });
}

/// The nearest shade on the way to `towards` that has this contrast to all of the surfaces.
QColor deepened(const QColor &ink, const QColor &towards, const std::vector<QColor> &surfaces,
                double wanted = readable) {
    QColor shade = ink;
    for (int percent = 0; percent <= 100 && !reaches(wanted, shade, surfaces); ++percent)
        shade = mixed(ink, towards, percent / 100.0);
    return shade;
}

/// The bare accents that are neither light nor dark enough for white are taken a little down; on really light
/// ones, such as yellow, the ink is dark instead.
void chooseAccent(Palette &palette, const QColor &wanted) {
    constexpr double nearlyReadable = 2.5;
    const bool lightInk = contrast(Qt::white, wanted) >= nearlyReadable;
    palette.onAccent = lightInk ? QColor(Qt::white) : QColor(0x0E, 0x12, 0x14);
    palette.accent = deepened(wanted, lightInk ? Qt::black : Qt::white, {palette.onAccent});
}

/// The fills go away from the ink, so that the text reads as well as before, unless there is no way to go.
ButtonColours filledButton(const QColor &fill, const QColor &ink) {
    const QColor away = luminance(ink) > 0.5 ? Qt::black : Qt::white;
    const QColor aim = contrast(fill, away) > 1.5 ? away : ink;
    return {fill, mixed(fill, aim, 0.10), mixed(fill, aim, 0.20), ink, Qt::transparent};
}

ButtonColours veil(const QColor &ink, double idle, double hovered, double pressed) {
    return {withAlpha(ink, idle), withAlpha(ink, hovered), withAlpha(ink, pressed), ink, Qt::transparent};
}

void chooseSurfaces(Palette &p, bool dark) {
    const QColor line = dark ? Qt::white : Qt::black;
    p.window = dark ? QColor(0x1D, 0x1D, 0x1F) : QColor(0xF4, 0xF4, 0xF6);
    p.sidebar = dark ? QColor(0x25, 0x25, 0x27) : QColor(0xEA, 0xEA, 0xED);
    p.card = dark ? QColor(0x2A, 0x2A, 0x2D) : QColor(0xFF, 0xFF, 0xFF);
    p.cardOutline = withAlpha(line, dark ? 0.09 : 0.08);
    p.hairline = withAlpha(line, 0.07);
    p.panel = dark ? withAlpha(QColor(40, 40, 43), 0.95) : withAlpha(QColor(246, 246, 248), 0.96);
    p.panelOutline = withAlpha(Qt::black, dark ? 0 : 0.13);
    p.track = dark ? QColor(0x4A, 0x4A, 0x50) : QColor(0xD5, 0xD5, 0xDA);
    p.track = deepened(p.track, line, {p.window, p.card}, discernible);
    p.text = dark ? QColor(0xF2, 0xF2, 0xF4) : QColor(0x1C, 0x1C, 0x1E);
}

void chooseButtons(Palette &p, bool dark) {
    p.prominentButton = filledButton(p.accent, p.onAccent);
    const QColor control = dark ? QColor(0x3A, 0x3A, 0x3E) : QColor(0xFF, 0xFF, 0xFF);
    p.plainButton = {control, mixed(control, p.text, 0.05), mixed(control, p.text, 0.11), p.text,
                     withAlpha(dark ? Qt::white : Qt::black, dark ? 0.10 : 0.14)};
    p.panelButton = veil(p.text, 0.08, 0.13, 0.20);
    p.closeButton = veil(p.text, 0.07, 0.14, 0.22);
}

} // namespace

Palette::Palette(const AppearanceWishes &wishes) {
    const bool dark = wishes.dark;
    const QColor peacockTeal = dark ? QColor(0x26, 0xA5, 0xB0) : QColor(0x0E, 0x7C, 0x86);
    const QColor wanted = wishes.accent ? QColor(QRgb{*wishes.accent}) : peacockTeal;
    const QColor farthest = dark ? Qt::white : Qt::black;
    chooseSurfaces(*this, dark);
    chooseAccent(*this, wanted);
    selection = withAlpha(wanted, dark ? 0.20 : 0.14);
    const std::vector<QColor> surfaces{window, sidebar, card, blended(panel, Qt::black),
                                       blended(panel, Qt::white)};
    secondaryText = deepened(dark ? QColor(0x9A, 0x9A, 0xA1) : QColor(0x6C, 0x6C, 0x72), farthest, surfaces);
    failure = deepened(dark ? QColor(0xFF, 0x6B, 0x60) : QColor(0xC9, 0x2A, 0x2A), farthest, surfaces);
    std::vector<QColor> selectable = surfaces;
    selectable.push_back(blended(selection, sidebar));
    accentText = deepened(wanted, farthest, selectable);
    chooseButtons(*this, dark);
}

double contrast(const QColor &one, const QColor &other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor blended(const QColor &above, const QColor &below) {
    const float share = above.alphaF();
    const auto mix = [share](float over, float under) { return over * share + under * (1 - share); };
    return QColor::fromRgbF(mix(above.redF(), below.redF()), mix(above.greenF(), below.greenF()),
                            mix(above.blueF(), below.blueF()));
}

} // namespace pavonel
