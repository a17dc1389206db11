#include "UI/Panels/ToastView.h"

#include "UI/Fonts.h"
#include "UI/MessageText.h"
#include "UI/Symbol.h"

#include <QPainter>

namespace pavonel {

namespace {

constexpr int padding = 16;
constexpr int spacing = 12;
constexpr int symbolSide = 22;
constexpr int mostLines = 2;

} // namespace

ToastView::ToastView(FloatingPanel &panel, const QString &text, const QString &symbol)
    : QWidget(&panel), palette_(panel.colours()), text_(text.simplified()), symbol_(symbol) {
    setGeometry(panel.contentsRect());
    setAccessibleName(text_);
}

void ToastView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const double middle = height() / 2.0;
    painter.drawImage(QPointF(padding, middle - symbolSide / 2.0),
                      Symbol::image(symbol_, symbolSide, palette_.secondaryText, devicePixelRatioF()));
    constexpr int left = padding + symbolSide + spacing;
    const QFont font = fonts::ui(13);
    const MessageText text(text_, font, width() - left - padding, mostLines * MessageText::lineHeight(font),
                           Qt::AlignLeft);
    painter.setPen(palette_.text);
    text.paint(painter, {left, middle - text.height() / 2});
}

} // namespace pavonel
