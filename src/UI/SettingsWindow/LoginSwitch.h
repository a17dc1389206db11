#pragma once

#include <QString>

namespace pavonel {

class LoginItem;
class Settings;

/// What the switch "Launch at login" does: it writes the setting, has the system do so at once, and keeps
/// what the system said.
class LoginSwitch {
public:
    LoginSwitch(Settings &settings, LoginItem &item);

    bool isOn() const;
    void set(bool on);

    /// Why the last flip failed, or else that the system has it otherwise; empty when all is as the switch
    /// says.
    QString words() const;

private:
    Settings &settings_;
    LoginItem &item_;
    QString failure_;
};

} // namespace pavonel
