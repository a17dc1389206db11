#include "UI/Fonts.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace pavonel::fonts {

namespace {

QString family() {
    const QString preferred = QStringLiteral("Inter");
    if (QFontDatabase::hasFamily(preferred))
        return preferred;
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

double digitWidth(const QFontMetricsF &metrics) {
    double widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

} // namespace

QFont ui(int size, QFont::Weight weight) {
    static const QString chosen = family();
    QFont font(chosen);
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

double tabularWidth(const QFontMetricsF &metrics, const QString &text) {
    const double digit = digitWidth(metrics);
    double width = 0;
    for (const QChar character : text)
        width += character.isDigit() ? digit : metrics.horizontalAdvance(character);
    return width;
}

void drawTabular(QPainter &painter, QPointF baseline, const QString &text) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    const double digit = digitWidth(metrics);
    for (const QChar character : text) {
        const double advance = metrics.horizontalAdvance(character);
        const double cell = character.isDigit() ? digit : advance;
        painter.drawText(QPointF(baseline.x() + (cell - advance) / 2, baseline.y()), QString(character));
        baseline.rx() += cell;
    }
}

} // namespace pavonel::fonts
