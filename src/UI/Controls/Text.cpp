#include "UI/Controls/Text.h"

#include "UI/Controls/Accessibility.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

constexpr int longestWord = 120; // points that a text insists on; longer words are broken

struct Type {
    int size; ///< Points.
    QFont::Weight weight;
    QColor Palette::*ink;
};

Type typeOf(Text::Style style) {
    switch (style) {
    case Text::Style::pageTitle:
        return {22, QFont::Bold, &Palette::text};
    case Text::Style::brand:
    case Text::Style::cardTitle:
        return {13, QFont::DemiBold, &Palette::text};
    case Text::Style::cardSubtitle:
        return {12, QFont::Normal, &Palette::secondaryText};
    case Text::Style::label:
        break;
    case Text::Style::secondary:
        return {13, QFont::Normal, &Palette::secondaryText};
    case Text::Style::note:
        return {11, QFont::Normal, &Palette::secondaryText};
    case Text::Style::failure:
        return {11, QFont::Medium, &Palette::failure};
    }
    return {13, QFont::Normal, &Palette::text};
}

/// Breaks the text into lines of this width; the height of all.
double breakLines(QTextLayout &layout, double width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    double y = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, y});
        y += line.height();
    }
    layout.endLayout();
    return y;
}

} // namespace

Text::Text(const QString &text, Style style) {
    setStyle(style);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    const bool heading = style == Style::pageTitle || style == Style::cardTitle;
    setAccessibleRole(*this, heading ? QAccessible::Heading : QAccessible::StaticText);
    setText(text);
}

void Text::setStyle(Style style) {
    const Type type = typeOf(style);
    QFont font = visuals().font(type.size, type.weight);
    if (style == Style::pageTitle)
        font.setLetterSpacing(QFont::AbsoluteSpacing, -0.2);
    setFont(font);
    ink_ = type.ink;
    update();
}

void Text::setText(const QString &text) {
    if (text == text_)
        return;
    text_ = text;
    text_.replace(u'\n', QChar::LineSeparator);
    setAccessibleName(text);
    updateGeometry();
    update();
}

int Text::heightForWidth(int width) const {
    QTextLayout layout(text_, font());
    return static_cast<int>(std::ceil(breakLines(layout, width)));
}

/// On as few lines as it has.
QSize Text::sizeHint() const {
    const double widest = QFontMetricsF(font()).size(0, text_).width();
    const int width = static_cast<int>(std::ceil(widest)) + 1;
    return {width, heightForWidth(width)};
}

QSize Text::minimumSizeHint() const {
    const QSize whole = sizeHint();
    return {std::min(whole.width(), longestWord), std::min(whole.height(), fontMetrics().height())};
}

void Text::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    painter.setPen(visuals().palette().*ink_);
    QTextLayout layout(text_, font());
    const double spare = QWidget::height() - breakLines(layout, width());
    layout.draw(&painter, QPointF(0, std::max(0.0, std::floor(spare / 2))));
}

} // namespace pavonel
