#pragma once

#include "Core/UpdaterRelease.h"
#include "Platform/Time.h"

#include <QStringList>
#include <QUrl>

#include <functional>

namespace pavonel {

struct HeadlessPlatform;

/// Why an update failed, as one sentence for the user.
struct UpdateFailure {
    QString message;
    bool operator==(const UpdateFailure &) const = default;
};

/// One attempt to put a release in the place of the running program.
class UpdaterInstall {
public:
    /// Absent on success.
    using Outcome = std::optional<UpdateFailure>;

    /// The release must be signed by the team `teamID`. The platform must outlive this.
    UpdaterInstall(const HeadlessPlatform &platform, Release release, QString teamID);

    /// Why it must not even begin: what would end up in the script, or on an open line. Absent when nothing
    /// speaks against it. On the main thread.
    Outcome objection(const QUrl &feed) const;

    /// Where the download has to go.
    QString folder() const { return folder_; }

    struct Notices {
        std::function<void()> staged;     ///< The new version is verified and copied.
        std::function<void()> handedOver; ///< What replaces us waits for our end.
    };

    /// Verifies the downloaded file, which it takes over, stages what is in it and hands over. Blocks while
    /// the tools work, on whichever thread it is called. The notices come on that thread too.
    Outcome installFrom(const QString &downloaded, const Notices &notices) const;

private:
    QString script() const;
    Outcome takeOver(const QString &downloaded, const Notices &notices) const;
    void removeLeftovers() const;
    Outcome verifyAndInstall(const QString &image, const Notices &notices) const;
    Outcome verifyChecksum(const QString &image) const;
    Outcome verifyApplication(const QString &application) const;
    Outcome verifyVersion(const QString &application) const;
    Outcome verifyRoomFor(const QString &staged) const;
    Outcome stage(const QString &application, const QString &staged) const;
    Outcome handOver(const QString &staged) const;
    Outcome run(const QString &tool, const QStringList &arguments) const;

    const HeadlessPlatform &platform_;
    Release release_;
    QString teamID_;
    QString folder_; ///< For temporary files.
    Instant begin_;
};

/// The script that waits for the end of process `pid` and then puts `staged` in the place of `application`.
/// Both paths must be ones that `canBeQuoted` accepts.
QString replacementScript(qint64 pid, const QString &application, const QString &staged);

/// The script that waits for the end of process `pid` and then opens the application that is its first
/// argument.
QString reopeningScript(qint64 pid);

/// Whether a path means itself between two double quotes in a shell, and on the shell's search path.
bool canBeQuoted(const QString &path);

/// Whether a version can be part of a file name and of the script.
bool isPlainVersion(const QString &version);

} // namespace pavonel
