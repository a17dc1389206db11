#pragma once

#include "Platform/InstalledApplications.h"

#include <QHash>
#include <QStringList>

#include <utility>

namespace pavonel {

/// The desktop files that belong in this desktop's menu, with the icons of its icon theme.
class LinuxInstalledApplications final : public InstalledApplications {
public:
    /// Where to look and for whom; a test gives folders of its own.
    struct Surroundings {
        QStringList desktopFiles;
        QStringList iconThemes; ///< Folders of icon themes.
        QStringList icons;      ///< Folders of icons that belong to no theme.
        QStringList desktops;   ///< What this desktop is called in OnlyShowIn and NotShowIn.
        QString locale;         ///< As "de_DE".

        static Surroundings ofThisDesktop();
    };

    explicit LinuxInstalledApplications(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

    std::vector<InstalledApplication> all() override;
    QImage icon(const QString &bundleIdentifier, int side) override;

private:
    Surroundings surroundings_;
    QHash<QString, QString> icons_; ///< From the identifier to what its desktop file says of the icon.
};

} // namespace pavonel
