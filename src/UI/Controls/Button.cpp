#include "UI/Controls/Button.h"

#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Visuals.h"
#include "UI/Fonts.h"

#include <QFontMetrics>

#include <cmath>

namespace pavonel {

namespace {

constexpr int noticeHeight = 24;
constexpr int noticePadding = 11;
constexpr int closeDiameter = 18;
constexpr double closeAir = 0.14; // around the drawing, of the disc

} // namespace

Button::Button(const QString &text, Role role, const QString &symbol)
    : QPushButton(text), role_(role), symbol_(symbol) {
    setFocusPolicy(isNotice() ? Qt::NoFocus : Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (!isNotice())
        return;
    setFont(fonts::ui(12, QFont::Medium));
    resize(noticeSize());
}

Button *Button::ofSymbol(const QString &symbol, const QString &name, Role role) {
    auto *button = new Button({}, role, symbol);
    button->setAccessibleName(name);
    return button;
}

double Button::symbolSide(const Visuals &visuals) const {
    if (!isNotice())
        return visuals.length(role_ == Role::entry ? 18 : 16);
    const double ratio = devicePixelRatioF(); // between two pixels it would blur
    return closeDiameter - 2 * std::round(closeDiameter * closeAir * ratio) / ratio;
}

int Button::roundDiameter(const Visuals &visuals) {
    return visuals.length(24);
}

int Button::besideSymbol(const Visuals &visuals) {
    return FocusRing::room + (roundDiameter(visuals) - visuals.length(16)) / 2;
}

QSize Button::noticeSize() const {
    if (text().isEmpty())
        return {closeDiameter, closeDiameter};
    return {QFontMetrics(font()).horizontalAdvance(text()) + 2 * noticePadding, noticeHeight};
}

} // namespace pavonel
