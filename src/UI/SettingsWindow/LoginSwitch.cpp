#include "UI/SettingsWindow/LoginSwitch.h"

#include "Core/Settings.h"
#include "Core/SystemBits.h"

namespace pavonel {

LoginSwitch::LoginSwitch(Settings &settings, LoginItem &item) : settings_(settings), item_(item) {}

bool LoginSwitch::isOn() const {
    return settings_.launchAtLogin;
}

void LoginSwitch::set(bool on) {
    failure_ = LaunchAtLogin::set(item_, on).value_or(QString());
    settings_.launchAtLogin = on;
}

QString LoginSwitch::words() const {
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
