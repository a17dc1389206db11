#pragma once

#include "Platform/Installation.h"
#include "Platform/Posix/FileLock.h"
#include "Platform/Qt/ProgramFiles.h"

#include <QFileSystemWatcher>
#include <QTimer>

#include <memory>
#include <utility>

#include <sys/types.h>

namespace pavonel {

/// A bundle is a folder named *.app with the program and what belongs to it inside, and its version in the
/// file "version".
class LinuxInstallation final : public Installation {
public:
    /// `signedMark` is the file that tells of signed images by being there.
    LinuxInstallation(const ProgramFiles &files, QString temporaryFolder, QString signedMark);

    QString limitation() const override;
    std::optional<QString> version() const override { return version_; }
    QString bundle() const override { return bundle_; }
    std::optional<QString> versionOf(const QString &bundle) const override;
    QString successor() const override;
    void onSuccessor(std::function<void()> handler) override;
    QString temporaryFolder() override;
    bool wereImagesSigned() const override;
    void keepThatImagesAreSigned() override;
    bool beginReplacing(const QString &script) override;
    void abandonReplacing() override { replacing_.reset(); }

private:
    /// Which file lies under a name; another one after it was exchanged.
    using Identity = std::pair<dev_t, ino_t>;
    static std::optional<Identity> identityOf(const QString &program);
    QString firstFolderOpenToOthers() const;

    QString program_;
    std::optional<Identity> identity_;
    QString bundle_;
    QString version_; ///< From before anything could take the bundle's place.
    QString temporaryFolder_;
    QString signedMark_;
    std::unique_ptr<FileLock> replacing_;
    std::shared_ptr<QFileSystemWatcher> watcher_;
    QTimer settled_;
};

} // namespace pavonel
