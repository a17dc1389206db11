#include "UI/SettingsWindow/SymbolView.h"

#include "UI/Symbol.h"

#include <QPainter>

namespace pavonel {

SymbolView::SymbolView(Look &look, const QString &symbol, int side)
    : look_(look), symbol_(symbol), side_(side) {
    setFixedSize(side, side);
}

void SymbolView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.drawImage(QPointF(0, 0),
                      Symbol::image(symbol_, side_, look_.palette().accentText, devicePixelRatioF()));
}

} // namespace pavonel
