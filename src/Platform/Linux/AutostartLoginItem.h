#pragma once

#include "Platform/LoginItem.h"

namespace pavonel {

class DesktopEntry;

/// The user's autostart entry, by which every desktop starts programs at login.
class AutostartLoginItem final : public LoginItem {
public:
    /// `program` is the absolute path of the executable, `configFolder` the user's folder of settings.
    AutostartLoginItem(QString program, const QString &configFolder);

    /// Gives the entry that earlier versions kept under another name the name of today, and leaves what is in
    /// it as it is. Where there is one of today's name already, that one counts.
    void takeOverEarlierEntry() const;

    /// Whether this desktop would start this very program; another copy of it elsewhere does not count.
    bool isEnabled() override;

    /// Enabling keeps what the user wrote into the entry, but for what hinders the start. Disabling removes
    /// the entry.
    std::optional<QString> setEnabled(bool enabled) override;

private:
    bool startsUs(const DesktopEntry &entry) const;
    std::optional<QString> write(const DesktopEntry &entry) const;

    QString program_;
    QString folder_;
    QString path_;
};

} // namespace pavonel
