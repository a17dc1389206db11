#pragma once

#include "Core/UpdaterRelease.h"
#include "Core/UpdaterScript.h"
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

    /// Whether the feed's entry must hold a signature of the image, which is then checked before the image is
    /// opened. One that it holds is checked in any case.
    enum class ImageSignature { welcome, required };

    /// The release must be signed by the team `teamID`. The platform must outlive this.
    UpdaterInstall(const HeadlessPlatform &platform, Release release, QString teamID,
                   ImageSignature imageSignature);

    /// Why it must not even begin: what would end up in the script, or on an open line. Absent when nothing
    /// speaks against it. On the main thread.
    Outcome objection(const QUrl &feed) const;

    /// Where the download has to go.
    QString folder() const { return folder_; }

    struct Notices {
        std::function<void()> imageSigned; ///< The feed's entry holds a good signature of the image.
        std::function<void()> staged;      ///< The new version is verified and copied.
        std::function<void()> handedOver;  ///< What replaces us waits for our end.
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
    Outcome verifyImage(const QString &image, const Notices &notices) const;
    Outcome verifyApplication(const QString &application) const;
    Outcome verifyVersion(const QString &application) const;
    Outcome verifyRoomFor(const QString &staged) const;
    Outcome stage(const QString &application, const QString &staged) const;
    Outcome handOver(const QString &staged) const;
    QString requirement() const;
    Outcome run(const QString &tool, const QStringList &arguments) const;

    const HeadlessPlatform &platform_;
    Release release_;
    QString teamID_;
    ImageSignature imageSignature_;
    QString folder_; ///< For temporary files.
    Instant begin_;
};

} // namespace pavonel
