#include "UI/SettingsWindow/Rows/StepValue.h"

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Pixels.h"
#include "UI/Fonts.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace pavonel {

StepValue::StepValue(Visuals &visuals, std::function<QString(double)> wording)
    : visuals_(visuals), wording_(std::move(wording)) {
    setFont(visuals.font(13));
    setAccessibleRole(*this, QAccessible::StaticText);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

void StepValue::setValue(double value) {
    text_ = wording_(value);
    setAccessibleName(text_);
    updateGeometry();
    update();
}

QSize StepValue::sizeHint() const {
    const QFontMetricsF metrics(font());
    return {static_cast<int>(std::ceil(fonts::tabularWidth(metrics, text_))) + 1,
            static_cast<int>(std::ceil(metrics.height()))};
}

void StepValue::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    painter.setPen(visuals_.palette().text);
    const QFontMetricsF metrics(font(), this);
    const double base = std::floor((height() - std::ceil(metrics.height())) / 2) + metrics.ascent();
    fonts::drawTabular(painter, {width() - fonts::tabularWidth(metrics, text_), base}, text_);
}

} // namespace pavonel
