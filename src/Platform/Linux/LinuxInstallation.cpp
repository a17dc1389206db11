#include "Platform/Linux/LinuxInstallation.h"

#include "Platform/Posix/PrivateFolder.h"
#include "Platform/Qt/sharedWatcher.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
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

/// Who else than the owner may put something in a folder.
enum class Openness { closed, sticky, open };

Openness opennessOf(const QString &folder) {
    constexpr uid_t unmapped = 65534; // how some containers show what is the system's
    struct stat status {};
    if (::stat(QFile::encodeName(folder).constData(), &status) != 0)
        return Openness::open;
    if (status.st_uid != ::geteuid() && status.st_uid != 0 && status.st_uid != unmapped)
        return Openness::open;
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) == 0)
        return Openness::closed;
    return (status.st_mode & S_ISVTX) != 0 ? Openness::sticky : Openness::open;
}

bool isOpenToOthers(const QString &folder) {
    return opennessOf(folder) != Openness::closed;
}

/// The first folder, from the one around `path` up to the root, in which others could put something in the
/// place of what leads there; empty when there is none. Nobody can move our folder, or the system's, out of a
/// sticky one.
QString folderOpenToOthers(const QString &path) {
    QString folder = QFileInfo(path).path();
    if (isOpenToOthers(folder))
        return folder;
    while (folder != u"/") {
        folder = QFileInfo(folder).path();
        if (opennessOf(folder) == Openness::open)
            return folder;
    }
    return {};
}

} // namespace

LinuxInstallation::LinuxInstallation(const ProgramFiles &files, QString temporaryFolder, QString signedMark)
    : program_(files.program()), identity_(identityOf(program_)), bundle_(bundleOf(program_)),
      version_(versionOf(bundle_).value_or(QStringLiteral(PAVONEL_VERSION))),
      temporaryFolder_(std::move(temporaryFolder)), signedMark_(std::move(signedMark)) {}

QString LinuxInstallation::limitation() const {
    if (isPackaged(program_))
        return QStringLiteral("This copy of Pavonel was installed by the system's package manager, "
                              "which also updates it.");
    if (program_.contains(QChar::ReplacementCharacter))
        return QStringLiteral("Pavonel cannot update itself in a folder whose name is no UTF-8 text.");
    if (bundle_.isEmpty())
        return QStringLiteral("This copy of Pavonel was not installed from a disk image. "
                              "Whoever built or installed it updates it.");
    for (const QString &folder : foldersAround(bundle_)) {
        if (!mayBeEmptied(folder))
            return QStringLiteral(
                       "You may not change the folder %1. Whoever installed Pavonel there updates it.")
                .arg(folder);
    }
    const QString open = firstFolderOpenToOthers();
    return open.isEmpty() ? QString()
                          : QStringLiteral("Other users may change the folder %1, so Pavonel does not update "
                                           "itself there.")
                                .arg(open);
}

/// Of the bundle's own and of those that lead to it.
QString LinuxInstallation::firstFolderOpenToOthers() const {
    const QStringList around = foldersAround(bundle_);
    const auto open = std::find_if(around.begin(), around.end(), isOpenToOthers);
    return open == around.end() ? folderOpenToOthers(bundle_) : *open;
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

std::optional<LinuxInstallation::Identity> LinuxInstallation::identityOf(const QString &program) {
    struct stat status {};
    const QByteArray path = QFile::encodeName(program);
    if (::stat(path.constData(), &status) != 0 || ::access(path.constData(), X_OK) != 0)
        return {};
    return Identity(status.st_dev, status.st_ino);
}

QString LinuxInstallation::successor() const {
    if (!bundle_.isEmpty()) {
        const auto version = versionOf(bundle_);
        return version && *version != version_ ? bundle_ : QString();
    }
    const auto identity = identityOf(program_);
    return identity_ && identity && *identity != *identity_ ? program_ : QString();
}

/// A package manager exchanges one file after the other, so what is new has to lie still for a while.
void LinuxInstallation::onSuccessor(std::function<void()> handler) {
    constexpr auto untilAllIsThere = std::chrono::seconds(10);
    if (!bundle_.isEmpty())
        return;
    watcher_ = sharedWatcher();
    watcher_->addPath(program_);
    settled_.setSingleShot(true);
    settled_.setInterval(untilAllIsThere);
    settled_.callOnTimeout([this, tell = std::move(handler)] {
        if (!successor().isEmpty())
            tell();
    });
    QObject::connect(watcher_.get(), &QFileSystemWatcher::fileChanged, &settled_,
                     [this](const QString &file) {
                         if (file == program_)
                             settled_.start();
                     });
}

QString LinuxInstallation::temporaryFolder() {
    makePrivateFolder(temporaryFolder_);
    const QString folder =
        QFileInfo(temporaryFolder_).canonicalFilePath(); // no link on the way is asked again
    return isPrivateFolderOfOurs(temporaryFolder_) && folderOpenToOthers(folder).isEmpty() ? folder
                                                                                           : QString();
}

bool LinuxInstallation::wereImagesSigned() const {
    return QFileInfo::exists(signedMark_);
}

/// On disk at once: the program is about to end.
void LinuxInstallation::keepThatImagesAreSigned() {
    makePrivateFolder(QFileInfo(signedMark_).path());
    QFile mark(signedMark_);
    if (mark.open(QFile::WriteOnly))
        ::fsync(mark.handle());
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
