#include "Platform/Linux/LinuxInstallation.h"

#include "Platform/Qt/PrivateFolder.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace pavonel {

namespace {

QString bundleOf(const QString &program) {
    const QFileInfo folder(QFileInfo(program).canonicalPath());
    const bool isBundle = folder.fileName().endsWith(u".app") &&
                          QDir(folder.filePath() + QStringLiteral("/libexec/pavonel")).exists();
    return isBundle ? folder.filePath() : QString();
}

/// Where only package managers put files.
bool isPackaged(const QString &program) {
    constexpr const char *places[] = {"/usr/", "/app/", "/snap/", "/nix/store/", "/gnu/store/"};
    return !program.startsWith(u"/usr/local/") &&
           std::any_of(std::begin(places), std::end(places),
                       [&](const char *place) { return program.startsWith(QString::fromUtf8(place)); });
}

bool mayBeEmptied(const QString &folder) {
    return ::access(QFile::encodeName(folder).constData(), R_OK | W_OK | X_OK) == 0;
}

/// All folders from which something goes when the bundle does.
QStringList foldersAround(const QString &bundle) {
    constexpr auto folders = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks;
    QStringList result{QFileInfo(bundle).path(), bundle};
    for (QDirIterator within(bundle, folders, QDirIterator::Subdirectories); within.hasNext();)
        result.append(within.next());
    return result;
}

/// Whether a shell of this user runs the script.
bool isAtWork(const QString &script) {
    const QByteArray path = QFile::encodeName(script);
    const QFileInfoList processes =
        QDir(QStringLiteral("/proc")).entryInfoList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    return std::any_of(processes.begin(), processes.end(), [&](const QFileInfo &process) {
        QFile commandLine(process.filePath() + QStringLiteral("/cmdline"));
        return process.ownerId() == ::geteuid() && commandLine.open(QFile::ReadOnly) &&
               commandLine.readAll().split('\0').value(1) == path;
    });
}

bool isPrivateFolderOfOurs(const QString &path) {
    struct stat status {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid() && (status.st_mode & 0777) == 0700;
}

/// Whether nobody but us and the system could put something else in its place.
bool isSafelyReached(QString folder) {
    constexpr uid_t unmapped = 65534; // how some containers show what is the system's
    while (folder != u"/") {
        folder = QFileInfo(folder).path();
        struct stat status {};
        if (::stat(QFile::encodeName(folder).constData(), &status) != 0)
            return false;
        const bool isOurs = status.st_uid == ::geteuid();
        const bool isOfTheSystem = status.st_uid == 0 || status.st_uid == unmapped;
        const bool isOpen = (status.st_mode & S_IWOTH) != 0 && (status.st_mode & S_ISVTX) == 0;
        if ((!isOurs && !isOfTheSystem) || isOpen)
            return false;
    }
    return true;
}

} // namespace

LinuxInstallation::LinuxInstallation(const ProgramFiles &files, QString temporaryFolder)
    : program_(files.program()), bundle_(bundleOf(program_)),
      version_(versionOf(bundle_).value_or(QStringLiteral(PAVONEL_VERSION))),
      temporaryFolder_(std::move(temporaryFolder)) {}

QString LinuxInstallation::limitation() const {
    if (isPackaged(program_))
        return QStringLiteral("This copy of Pavonel was installed by the system's package manager, "
                              "which also updates it.");
    if (bundle_.isEmpty())
        return QStringLiteral("This copy of Pavonel was not installed from a disk image. "
                              "Whoever built or installed it updates it.");
    for (const QString &folder : foldersAround(bundle_)) {
        if (!mayBeEmptied(folder))
            return QStringLiteral(
                       "You may not change the folder %1. Whoever installed Pavonel there updates it.")
                .arg(folder);
    }
    return {};
}

std::optional<QString> LinuxInstallation::versionOf(const QString &bundle) const {
    constexpr qint64 longest = 256;
    if (bundle.isEmpty())
        return {};
    QFile file(bundle + QStringLiteral("/version"));
    if (!file.open(QFile::ReadOnly))
        return {};
    const QString text = QString::fromUtf8(file.read(longest)).trimmed();
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

QString LinuxInstallation::temporaryFolder() {
    makePrivateFolder(temporaryFolder_);
    const QString folder =
        QFileInfo(temporaryFolder_).canonicalFilePath(); // no link on the way is asked again
    return isPrivateFolderOfOurs(temporaryFolder_) && isSafelyReached(folder) ? folder : QString();
}

bool LinuxInstallation::beginReplacing(const QString &script) {
    if (replacing_)
        return false;
    auto lock = std::make_unique<FileLock>(temporaryFolder_ + QStringLiteral("/lock"));
    if (lock->state() == FileLock::State::takenByAnother || isAtWork(script))
        return false;
    replacing_ = std::move(lock);
    return true;
}

} // namespace pavonel
