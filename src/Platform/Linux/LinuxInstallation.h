#pragma once

#include "Platform/Installation.h"
#include "Platform/Qt/FileLock.h"
#include "Platform/Qt/ProgramFiles.h"

#include <memory>

namespace pavonel {

/// A bundle is a folder named *.app with the program and what belongs to it inside, and its version in the
/// file "version".
class LinuxInstallation final : public Installation {
public:
    LinuxInstallation(const ProgramFiles &files, QString temporaryFolder);

    QString limitation() const override;
    std::optional<QString> version() const override { return version_; }
    QString bundle() const override { return bundle_; }
    std::optional<QString> versionOf(const QString &bundle) const override;
    QString temporaryFolder() override;
    bool beginReplacing(const QString &script) override;
    void abandonReplacing() override { replacing_.reset(); }

private:
    QString program_;
    QString bundle_;
    QString version_; ///< From before anything could take the bundle's place.
    QString temporaryFolder_;
    std::unique_ptr<FileLock> replacing_;
};

} // namespace pavonel
