#include "UI/Style/Visuals.h"

#include "Platform/WindowLayers.h"
#include "UI/Fonts.h"
#include "UI/Style/Pixels.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

/// Desktops' ordinary fonts lie between 12 and 15 pixels. Whoever chose a larger one means it.
double textScale() {
    constexpr double largestOrdinary = 15;
    return std::clamp(QFontInfo(QGuiApplication::font()).pixelSize() / largestOrdinary, 1.0, 2.5);
}

} // namespace

Visuals::Visuals(const DisplayServices &display) : display_(display), palette_(display.appearance.wishes()) {}

void Visuals::refresh() {
    palette_ = Palette(display_.appearance.wishes());
}

QFont Visuals::font(int size, QFont::Weight weight) const {
    return fonts::ui(length(size), weight);
}

int Visuals::length(int points) const {
    return static_cast<int>(std::lround(points * textScale()));
}

int Visuals::lineHeight(int points) const {
    constexpr int line = 16;
    return points + length(line) - line;
}

MainLoop &Visuals::loop() const {
    return display_.loop;
}

Appearance &Visuals::appearance() const {
    return display_.appearance;
}

bool Visuals::canBlend() const {
    return display_.layers.canBlend();
}

QPalette Visuals::toolkitPalette() const {
    QPalette toolkit;
    toolkit.setColor(QPalette::Window, palette_.card);
    toolkit.setColor(QPalette::Base, palette_.plainButton.fill);
    toolkit.setColor(QPalette::Button, palette_.plainButton.fill);
    toolkit.setColor(QPalette::ToolTipBase, palette_.card);
    for (const auto ink : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        toolkit.setColor(ink, palette_.text);
    toolkit.setColor(QPalette::PlaceholderText, palette_.secondaryText);
    toolkit.setColor(QPalette::Highlight, palette_.accent);
    toolkit.setColor(QPalette::HighlightedText, palette_.onAccent);
    for (const auto ink :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText}) {
        QColor faint = toolkit.color(QPalette::Active, ink);
        faint.setAlphaF(static_cast<float>(disabledOpacity));
        toolkit.setColor(QPalette::Disabled, ink, faint);
    }
    return toolkit;
}

} // namespace pavonel
