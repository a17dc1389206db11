#include "UI/Panels/ToastView.h"

#include "UI/Fonts.h"
#include "UI/Symbol.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

namespace pavonel {

namespace {

constexpr int padding = 16;
constexpr int spacing = 12;
constexpr int symbolSide = 22;
constexpr std::size_t mostLines = 2;

/// Broken between words where there are any; what does not fit the last line ends in an ellipsis.
std::vector<QString> brokenToFit(const QString &text, const QFont &font, double room) {
    std::vector<QString> lines;
    QTextOption wherever;
    wherever.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(text, font);
    layout.setTextOption(wherever);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(room);
        const bool last = lines.size() + 1 == mostLines;
        const QString rest = text.mid(line.textStart());
        lines.push_back(last ? QFontMetricsF(font).elidedText(rest, Qt::ElideRight, room)
                             : rest.left(line.textLength()));
        if (last)
            break;
    }
    layout.endLayout();
    return lines;
}

} // namespace

ToastView::ToastView(FloatingPanel &panel, const QString &text, const QString &symbol)
    : QWidget(&panel), palette_(panel.colours()), text_(text.simplified()), symbol_(symbol) {
    resize(panel.size());
    setAccessibleName(text_);
}

void ToastView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const double middle = height() / 2.0;
    painter.drawImage(QPointF(padding, middle - symbolSide / 2.0),
                      Symbol::image(symbol_, symbolSide, palette_.secondaryText, devicePixelRatioF()));
    constexpr int left = padding + symbolSide + spacing;
    const QFont font = fonts::ui(13);
    const QFontMetricsF metrics(font);
    const auto lines = brokenToFit(text_, font, width() - left - padding);
    double baseline = middle - metrics.height() * static_cast<double>(lines.size()) / 2 + metrics.ascent();
    painter.setFont(font);
    painter.setPen(palette_.text);
    for (const QString &line : lines) {
        painter.drawText(QPointF(left, baseline), line);
        baseline += metrics.height();
    }
}

} // namespace pavonel
