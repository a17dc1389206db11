#include "UI/MessageText.h"

#include "Core/Characters.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

constexpr double leading = 1.3;
constexpr qsizetype moreThanAnyScreenHolds = 20000;

} // namespace

double MessageText::lineHeight(const QFont &font) {
    return std::round(leading * font.pixelSize());
}

MessageText::MessageText(const QString &text, const QFont &font, double maxWidth, double maxHeight,
                         Qt::AlignmentFlag alignment)
    : font_(font), alignment_(alignment), lineHeight_(lineHeight(font)),
      maxLines_(std::max(1, static_cast<int>(maxHeight / lineHeight_))) {
    QString lines = beginning(text, moreThanAnyScreenHolds);
    lines.replace(QLatin1Char('\n'), QChar::LineSeparator);
    layout_ = std::make_unique<QTextLayout>(lines, font_);
    layout_->setTextOption(option());
    layout_->setCacheEnabled(true);
    lineCount_ = breakLines(maxWidth);
    if (lineCount_ > maxLines_)
        cut(maxWidth);
    else
        balance(maxWidth);
}

QTextOption MessageText::option() const {
    QTextOption option(alignment_);
    option.setTextDirection(Qt::LayoutDirectionAuto);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

/// Yields the number of lines, at most one more than are allowed.
int MessageText::breakLines(double width) {
    const QFontMetricsF metrics(font_);
    const double firstBaseline = (lineHeight_ - metrics.ascent() - metrics.descent()) / 2 + metrics.ascent();
    width_ = width;
    int count = 0;
    layout_->beginLayout();
    for (QTextLine line = layout_->createLine(); line.isValid(); line = layout_->createLine()) {
        line.setLineWidth(width);
        // Other fonts can lend taller characters; the base lines stay where they are.
        line.setPosition(QPointF(0, std::round(firstBaseline + lineHeight_ * count) - line.ascent()));
        if (++count > maxLines_)
            break;
    }
    layout_->endLayout();
    return std::max(count, 1);
}

/// How many lines end in the middle of a word.
int MessageText::splitWords() const {
    QTextBoundaryFinder places(QTextBoundaryFinder::Line, layout_->text());
    int count = 0;
    for (int i = 0; i + 1 < layout_->lineCount(); ++i) {
        const QTextLine line = layout_->lineAt(i);
        places.setPosition(line.textStart() + line.textLength());
        count += places.isAtBoundary() ? 0 : 1;
    }
    return count;
}

/// A last line of one or two words looks lost: narrows the text as far as it takes no further line and splits
/// no further word.
void MessageText::balance(double maxWidth) {
    constexpr int mostLines = 6; // beyond, it is a block of text anyway
    if (lineCount_ < 2 || lineCount_ > mostLines)
        return;
    const int split = splitWords();
    double fits = maxWidth;
    double tooNarrow = maxWidth / 2;
    while (fits - tooNarrow > 1) {
        const double middle = std::round((fits + tooNarrow) / 2);
        const bool isTooNarrow = breakLines(middle) > lineCount_ || splitWords() > split;
        (isTooNarrow ? tooNarrow : fits) = middle;
    }
    breakLines(fits);
}

void MessageText::cut(double maxWidth) {
    lineCount_ = maxLines_;
    QString rest = layout_->text().mid(layout_->lineAt(maxLines_ - 1).textStart());
    rest.replace(QChar::LineSeparator, QLatin1Char(' '));
    lastLine_ = QFontMetricsF(font_).elidedText(rest, Qt::ElideRight, maxWidth);
}

void MessageText::paint(QPainter &painter, QPointF top) const {
    const QPointF origin(alignment_ == Qt::AlignHCenter ? top.x() - width_ / 2 : top.x(), top.y());
    const int whole = isCut() ? lineCount_ - 1 : layout_->lineCount();
    for (int i = 0; i < whole; ++i)
        layout_->lineAt(i).draw(&painter, origin);
    if (!isCut())
        return;
    QTextOption oneLine = option();
    oneLine.setWrapMode(QTextOption::NoWrap);
    painter.setFont(font_);
    const QRectF box(origin.x(), origin.y() + lineHeight_ * (lineCount_ - 1), width_, lineHeight_);
    painter.drawText(box, lastLine_, oneLine);
}

} // namespace pavonel
