#pragma once

#include "Platform/Applications.h"
#include "Platform/Linux/Applications/DesktopFileCatalogue.h"
#include "Platform/Linux/Applications/FrontWindow.h"
#include "Platform/Linux/Applications/ProcessTable.h"
#include "Platform/Linux/Applications/ProgramStarts.h"
#include "Platform/Linux/Applications/RemoteViewers.h"

#include <memory>

namespace pavonel {

/// The user's processes, seen as applications.
class LinuxApplications final : public Applications {
public:
    /// Where to look; a test gives folders of its own.
    struct Folders {
        QByteArray processes = "/proc";
        QStringList desktopFiles = DesktopFileCatalogue::standardFolders();
        QByteArrayList programs = ProgramStarts::searchPath();
    };

    /// Without a source of front windows nothing is ever in front, without screen casts none is live.
    LinuxApplications(std::unique_ptr<FrontWindowSource> front, std::unique_ptr<ScreenCasts> casts,
                      const Folders &folders, MainLoop &loop);

    std::vector<Application> running() override;
    std::optional<Application> frontmost() override;
    bool mayRunMore() override { return isServed_ || searches_ > 0 || processes_.mayHaveMore(); }
    QString limitation() const override;

private:
    void refreshIndex();
    void refreshProcesses();
    bool isSharing();
    QString identifierOf(const FrontWindow &window) const;

    std::unique_ptr<FrontWindowSource> front_;
    std::unique_ptr<ScreenCasts> casts_;
    DesktopFileCatalogue catalogue_;
    ProcessTable processes_;
    ProgramStarts recorderStarts_;
    int searches_ = 0; ///< For recorders, that are still to come.
    RemoteViewers viewers_;
    bool isServed_ = false; ///< Something runs that viewers can connect to, and nobody tells when they do.

    FrontWindow knownWindow_;
    QString knownIdentifier_;
};

} // namespace pavonel
