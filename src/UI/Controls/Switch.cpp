#include "UI/Controls/Switch.h"

#include "UI/Style/Traits.h"
#include "UI/Style/Visuals.h"

#include <QSignalBlocker>

namespace pavonel {

Switch::Switch(const QString &name)
    : knob_(visuals().loop(), visuals().appearance(), [this](double knob) {
          setProperty(knobProperty, knob);
          update();
      }) {
    setProperty(knobProperty, knob_.opacity());
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QCheckBox::toggled, this, [this](bool on) { knob_.to(on, 0.16); });
}

void Switch::setOn(bool on) {
    if (on == isChecked())
        return;
    const QSignalBlocker silence(this);
    setChecked(on);
    knob_.to(on, 0);
}

} // namespace pavonel
