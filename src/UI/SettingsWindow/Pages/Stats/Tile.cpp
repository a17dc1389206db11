#include "UI/SettingsWindow/Pages/Stats/Tile.h"

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Pixels.h"
#include "UI/Controls/Visuals.h"
#include "UI/Fonts.h"

#include <QAccessibleWidget>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int padding = 12;
constexpr double radius = 10;
constexpr int between = 2;

class TileWidget final : public QWidget, public AccessibleControl {
public:
    TileWidget(Visuals &visuals, const Tile &tile) : visuals_(visuals), tile_(tile) {
        setAccessibleName(tile.label);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override {
        return {120, 2 * padding + between + QFontMetrics(numberFont()).height() +
                         QFontMetrics(captionFont()).height()};
    }

    QAccessibleInterface *makeAccessible() override { return new Accessible(this); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        drawBody(painter, rect(), radius, visuals_.palette().window, Qt::transparent);
        const QFont number = numberFont();
        const QFontMetricsF metrics(number, this);
        painter.setFont(number);
        painter.setPen(visuals_.palette().text);
        drawNumber(painter, padding + metrics.ascent(), fonts::tabularWidth(metrics, tile_.value));
        painter.setFont(captionFont());
        painter.setPen(visuals_.palette().secondaryText);
        const QRectF place(padding, padding + metrics.height() + between, width() - 2 * padding, height());
        painter.drawText(
            place, Qt::AlignLeft | Qt::AlignTop,
            QFontMetricsF(captionFont(), this).elidedText(tile_.label, Qt::ElideRight, place.width()));
    }

private:
    class Accessible final : public QAccessibleWidget {
    public:
        explicit Accessible(TileWidget *tile)
            : QAccessibleWidget(tile, QAccessible::StaticText), tile_(*tile) {}
        QString text(QAccessible::Text type) const override {
            if (type == QAccessible::Name)
                return tile_.tile_.label + QStringLiteral(": ") + tile_.tile_.value;
            return type == QAccessible::Value ? tile_.tile_.value : QAccessibleWidget::text(type);
        }

    private:
        TileWidget &tile_;
    };

    /// A long one gets smaller.
    void drawNumber(QPainter &painter, double baseline, double numberWidth) const {
        const double shrink = std::min(1.0, (width() - 2 * padding) / numberWidth);
        painter.save();
        painter.translate(padding, baseline);
        painter.scale(shrink, shrink);
        fonts::drawTabular(painter, {0, 0}, tile_.value);
        painter.restore();
    }

    QFont numberFont() const { return visuals_.font(24, QFont::Light); }
    QFont captionFont() const { return visuals_.font(11); }

    Visuals &visuals_;
    Tile tile_;
};

} // namespace

QWidget *Tile::make(Visuals &visuals) const {
    return new TileWidget(visuals, *this);
}

} // namespace pavonel
