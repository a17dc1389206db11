#include "UI/SettingsWindow/ProgressBar.h"

#include "UI/Controls/Pixels.h"

#include <QAccessibleWidget>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

constexpr double thickness = 6;

class ProgressAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit ProgressAccessible(ProgressBar *bar)
        : QAccessibleWidget(bar, QAccessible::ProgressBar), bar_(*bar) {}

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return bar_.progress(); }
    void setCurrentValue(const QVariant &) override {}
    QVariant minimumValue() const override { return 0.0; }
    QVariant maximumValue() const override { return 1.0; }
    QVariant minimumStepSize() const override { return 0.0; }

private:
    ProgressBar &bar_;
};

} // namespace

ProgressBar::ProgressBar(Look &look, const QString &name, double progress)
    : look_(look), progress_(std::isnan(progress) ? 0 : std::clamp(progress, 0.0, 1.0)) {
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ProgressBar::sizeHint() const {
    return {200, QFontMetrics(look_.font(11)).height()};
}

QAccessibleInterface *ProgressBar::makeAccessible() {
    return new ProgressAccessible(this);
}

void ProgressBar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const QRectF track(0, (height() - thickness) / 2, width(), thickness);
    drawBody(painter, track, thickness / 2, look_.palette().track, Qt::transparent);
    if (progress_ <= 0)
        return;
    QRectF done = track;
    done.setWidth(std::max(thickness, track.width() * progress_));
    drawBody(painter, done, thickness / 2, look_.palette().accent, Qt::transparent);
}

} // namespace pavonel
