#include "UI/Fonts.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <numeric>

namespace pavonel::fonts {

namespace {

QString installedOr(const QString &preferred, const QString &otherwise) {
    return QFontDatabase::hasFamily(preferred) ? preferred : otherwise;
}

/// Large text has a cut of its own, with finer spacing.
QString family(bool large) {
    static const QString text =
        installedOr(QStringLiteral("Inter"), QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
    static const QString display = installedOr(QStringLiteral("Inter Display"), text);
    return large ? display : text;
}

double digitWidth(const QFontMetricsF &metrics) {
    double widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

/// The room of each character: digits share that of the widest one, and a colon stands a little free of them.
class Cells {
public:
    explicit Cells(const QFontMetricsF &metrics)
        : metrics_(metrics), digit_(digitWidth(metrics)), besideColon_(metrics.capHeight() / 12) {}

    double width(QChar character) const {
        if (character.isDigit())
            return digit_;
        return advance(character) + (character == u':' ? 2 * besideColon_ : 0);
    }
    double advance(QChar character) const { return metrics_.horizontalAdvance(character); }

private:
    const QFontMetricsF &metrics_;
    double digit_;
    double besideColon_;
};

/// Of what its room leaves free, the share on the left of a character: in the middle of other digits it
/// stands in the middle, but a narrow one leans on a colon beside it, which has some air of its own.
double shareOnTheLeft(const QString &text, qsizetype index) {
    constexpr double leaning = 0.2;
    const auto isColon = [&](qsizetype at) { return at >= 0 && at < text.size() && text[at] == u':'; };
    if (isColon(index - 1) == isColon(index + 1))
        return 0.5;
    return isColon(index - 1) ? leaning : 1 - leaning;
}

} // namespace

QFont ui(int size, QFont::Weight weight) {
    constexpr int smallestDisplaySize = 32;
    QFont font(family(size >= smallestDisplaySize));
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

double tabularWidth(const QFontMetricsF &metrics, const QString &text) {
    const Cells cells(metrics);
    return std::accumulate(text.begin(), text.end(), 0.0,
                           [&](double width, QChar character) { return width + cells.width(character); });
}

void drawTabular(QPainter &painter, QPointF baseline, const QString &text) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    const Cells cells(metrics);
    // A colon is made for small letters; between digits it belongs at half of their height.
    const double colonRise = (metrics.capHeight() - metrics.xHeight()) / 2;
    for (qsizetype index = 0; index < text.size(); ++index) {
        const QChar character = text[index];
        const double cell = cells.width(character);
        const double free = cell - cells.advance(character);
        const double rise = character == u':' ? colonRise : 0;
        painter.drawText(baseline + QPointF(free * shareOnTheLeft(text, index), -rise), QString(character));
        baseline.rx() += cell;
    }
}

} // namespace pavonel::fonts
