#include "Core/LoginSwitch.h"

#include "Core/SystemBits.h"

namespace pavonel {

void LoginSwitch::set(bool on) {
    failure_ = LaunchAtLogin::set(item_, on).value_or(QString());
    settings_.launchAtLogin = on;
}

QString LoginSwitch::difference() const {
    if (!failure_.isEmpty())
        return {};
    if (QString limitation = item_.limitation(); !limitation.isEmpty())
        return limitation;
    if (item_.isEnabled() == isOn())
        return {};
    return isOn() ? QStringLiteral("At the moment Pavonel is not started at login.")
                  : QStringLiteral("At the moment Pavonel is started at login all the same.");
}

} // namespace pavonel
