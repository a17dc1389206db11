#include "UI/Controls/Text.h"

#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Pixels.h"

#include <QPainter>
#include <QTextLayout>

#include <cmath>

namespace pavonel {

namespace {

constexpr int longestWord = 120; // points that a text insists on; longer words are broken

QFont fontOf(const Visuals &visuals, Text::Style style) {
    switch (style) {
    case Text::Style::pageTitle:
        return visuals.font(22, QFont::Bold);
    case Text::Style::brand:
    case Text::Style::cardTitle:
        return visuals.font(13, QFont::DemiBold);
    case Text::Style::cardSubtitle:
        return visuals.font(12);
    case Text::Style::label:
        return visuals.font(13);
    case Text::Style::secondary:
        return visuals.font(13);
    case Text::Style::note:
        return visuals.font(11);
    case Text::Style::failure:
        return visuals.font(11, QFont::Medium);
    }
    return visuals.font(13);
}

QColor inkOf(const Palette &palette, Text::Style style) {
    if (style == Text::Style::failure)
        return palette.failure;
    const bool quiet =
        style == Text::Style::cardSubtitle || style == Text::Style::secondary || style == Text::Style::note;
    return quiet ? palette.secondaryText : palette.text;
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

Text::Text(Visuals &visuals, const QString &text, Style style) : visuals_(visuals), style_(style) {
    QFont font = fontOf(visuals, style);
    if (style == Style::pageTitle)
        font.setLetterSpacing(QFont::AbsoluteSpacing, -0.2);
    setFont(font);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    const bool heading = style == Style::pageTitle || style == Style::cardTitle;
    setAccessibleRole(*this, heading ? QAccessible::Heading : QAccessible::StaticText);
    setText(text);
}

void Text::setStyle(Style style) {
    style_ = style;
    setFont(fontOf(visuals_, style));
    whole_ = {};
    heightKnownFor_ = -1;
    update();
}

void Text::setText(const QString &text) {
    if (text == text_)
        return;
    text_ = text;
    text_.replace(u'\n', QChar::LineSeparator);
    whole_ = {};
    heightKnownFor_ = -1;
    setAccessibleName(text);
    updateGeometry();
    update();
}

int Text::heightForWidth(int width) const {
    if (width != heightKnownFor_) {
        QTextLayout layout(text_, font());
        height_ = static_cast<int>(std::ceil(breakLines(layout, width)));
        heightKnownFor_ = width;
    }
    return height_;
}

QSize Text::sizeHint() const {
    if (whole_.isEmpty())
        whole_ = measured();
    return whole_;
}

QSize Text::measured() const {
    QTextLayout layout(text_, font());
    constexpr double unlimited = 1e6;
    const double height = breakLines(layout, unlimited);
    double widest = 0;
    for (int i = 0; i < layout.lineCount(); ++i)
        widest = std::max(widest, layout.lineAt(i).naturalTextWidth());
    return {static_cast<int>(std::ceil(widest)) + 1, static_cast<int>(std::ceil(height))};
}

QSize Text::minimumSizeHint() const {
    const QSize whole = sizeHint();
    return {std::min(whole.width(), longestWord), std::min(whole.height(), fontMetrics().height())};
}

void Text::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    painter.setPen(inkOf(visuals_.palette(), style_));
    QTextLayout layout(text_, font());
    const double spare = QWidget::height() - breakLines(layout, width());
    layout.draw(&painter, QPointF(0, std::max(0.0, std::floor(spare / 2))));
}

} // namespace pavonel
