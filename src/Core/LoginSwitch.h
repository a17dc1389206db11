#pragma once

#include "Core/Settings.h"
#include "Platform/LoginItem.h"

namespace pavonel {

/// What the switch "Launch at login" does: it writes the setting, has the system do so at once, and keeps
/// what the system said.
class LoginSwitch {
public:
    LoginSwitch(Settings &settings, LoginItem &item) : settings_(settings), item_(item) {}

    bool isOn() const { return settings_.launchAtLogin; }
    void set(bool on);

    /// Why the last flip failed; empty when it did not.
    QString failure() const { return failure_; }

    /// That the system has it otherwise; empty when all is as the switch says, and after a failure.
    QString difference() const;

private:
    Settings &settings_;
    LoginItem &item_;
    QString failure_;
};

} // namespace pavonel
