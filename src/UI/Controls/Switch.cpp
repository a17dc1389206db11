#include "UI/Controls/Switch.h"

#include "UI/Style/FocusRing.h"
#include "UI/Style/Traits.h"
#include "UI/Style/Visuals.h"

#include <QSignalBlocker>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace pavonel {

namespace {

constexpr Seconds slide = 0.16;

} // namespace

Switch::Switch(const QString &name)
    : knob_(visuals().loop(), visuals().appearance(), [this](double knob) {
          setProperty(knobProperty, knob);
          update();
      }) {
    setProperty(knobProperty, knob_.opacity());
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QCheckBox::toggled, this, [this](bool on) { knob_.to(on, slide); });
}

void Switch::setOn(bool on) {
    if (on == isChecked())
        return;
    const QSignalBlocker silence(this);
    setChecked(on);
    knob_.to(on, 0);
}

QSize Switch::sizeHint() const {
    return QSize(style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this),
                 style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, this)) +
           QSize(2, 2) * FocusRing::room;
}

/// It has no text: the indicator is all, in the middle.
void Switch::paintEvent(QPaintEvent *) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const QSize body = sizeHint() - QSize(2, 2) * FocusRing::room;
    option.rect = QRect(QPoint((width() - body.width()) / 2, (height() - body.height()) / 2), body);
    painter.drawPrimitive(QStyle::PE_IndicatorCheckBox, option);
}

} // namespace pavonel
