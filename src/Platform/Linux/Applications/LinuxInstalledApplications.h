#pragma once

#include "Platform/BackgroundTask.h"
#include "Platform/InstalledApplications.h"

#include <QHash>
#include <QImage>
#include <QStringList>

#include <utility>

namespace pavonel {

/// The desktop files that belong in this desktop's menu, with the icons of its icon theme. They may lie on a
/// disk that stopped answering: then there are none.
class LinuxInstalledApplications final : public InstalledApplications {
public:
    /// Where to look and for whom; a test gives folders of its own.
    struct Environment {
        QStringList desktopFiles;
        QStringList iconThemes; ///< Folders of icon themes.
        QStringList icons;      ///< Folders of icons that belong to no theme.
        QStringList desktops;   ///< What this desktop is called in OnlyShowIn and NotShowIn.
        QString locale;         ///< As "de_DE".

        static Environment ofThisDesktop();
    };

    LinuxInstalledApplications(Environment environment, MainLoop &loop)
        : environment_(std::move(environment)), loop_(loop) {}

    std::vector<InstalledApplication> all() override;
    QImage icon(const QString &bundleIdentifier, int side) override;

private:
    /// What the disk says.
    struct Found {
        std::vector<InstalledApplication> applications;
        QHash<QString, QString> icons; ///< From the identifier to what its desktop file says of the icon.
    };
    static Found find(const Environment &environment);
    QImage imageIn(const QString &path, int side);

    Environment environment_;
    MainLoop &loop_;
    Found found_;
    BackgroundTask search_;
    BackgroundTask reading_;
};

} // namespace pavonel
