#include "Core/UpdaterInstall.h"

#include "Core/Characters.h"
#include "Platform/HeadlessPlatform.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStorageInfo>
#include <QStringConverter>
#include <QUuid>

#include <algorithm>
#include <filesystem>
#include <utility>
#include <variant>

namespace pavonel {

namespace {

using Outcome = UpdaterInstall::Outcome;

const QString diskImages = QStringLiteral("/usr/bin/hdiutil");
const QString signatures = QStringLiteral("/usr/bin/codesign");

/// Whatever it is, a folder with everything in it, but never where a link leads.
Outcome removeEntirely(const QString &path) {
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(path).toStdString(), error);
    if (!error)
        return {};
    return UpdateFailure{QStringLiteral("The file %1 cannot be removed (%2).")
                             .arg(path, QString::fromLocal8Bit(error.message().c_str()))};
}

QString decoded(const QByteArray &output) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(output);
    return decoder.hasError() ? QString() : text;
}

/// What a folder takes on a disk, in bytes.
qint64 sizeOf(const QString &folder) {
    constexpr qint64 block = 4096;
    constexpr auto everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    qint64 sum = 0;
    for (QDirIterator entries(folder, everything, QDirIterator::Subdirectories); entries.hasNext();) {
        const QFileInfo entry(entries.next());
        sum += entry.isFile() && !entry.isSymLink() ? entry.size() / block * block + block : block;
    }
    return sum;
}

Outcome writeExecutable(const QString &path, const QByteArray &content) {
    constexpr auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup |
                                 QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    QSaveFile file(path);
    if (file.open(QFile::WriteOnly) && file.write(content) == content.size() &&
        file.setPermissions(permissions) && file.commit())
        return {};
    return UpdateFailure{QStringLiteral("The file %1 cannot be written (%2).").arg(path, file.errorString())};
}

} // namespace

UpdaterInstall::UpdaterInstall(const HeadlessPlatform &platform, Release release, QString teamID,
                               ImageSignature imageSignature)
    : platform_(platform), release_(std::move(release)), teamID_(std::move(teamID)),
      imageSignature_(imageSignature), folder_(platform.installation->temporaryFolder()),
      begin_(platform.mainLoop->now()) {}

UpdaterInstall::Outcome UpdaterInstall::objection(const QUrl &feed) const {
    if (const QString limitation = platform_.installation->limitation(); !limitation.isEmpty())
        return UpdateFailure{limitation};
    if (!isPlainVersion(release_.version))
        return UpdateFailure{
            QStringLiteral("The update server names a version that is none. Nothing was installed.")};
    if (folder_.contains(QChar::ReplacementCharacter)) // Qt's for what is no text
        return UpdateFailure{QStringLiteral("Pavonel cannot update itself with temporary files in a folder "
                                            "whose name is no UTF-8 text.")};
    if (!canBeQuoted(platform_.installation->bundle()) || !canBeQuoted(folder_))
        return UpdateFailure{
            QStringLiteral("Pavonel cannot update itself in a folder with \" $ ` \\ ! : or a line break in "
                           "its path.")};
    if (folder_.isEmpty())
        return UpdateFailure{
            QStringLiteral("The folder for temporary files cannot be used. Nothing was installed.")};
    const QUrl image(release_.url);
    if (feed.scheme() == u"https" && image.scheme() == u"http")
        return UpdateFailure{
            QStringLiteral("The update would come over an insecure connection. Nothing was installed.")};
    return {};
}

QString UpdaterInstall::script() const {
    return folder_ + QStringLiteral("/pavonel-update.sh");
}

/// Two at once would exchange what the other has just verified, or replace this copy from under each other.
UpdaterInstall::Outcome UpdaterInstall::installFrom(const QString &downloaded, const Notices &notices) const {
    if (!platform_.installation->beginReplacing(script())) {
        removeEntirely(downloaded);
        return UpdateFailure{QStringLiteral("Another update of Pavonel is under way.")};
    }
    auto failure = takeOver(downloaded, notices);
    if (failure)
        platform_.installation->abandonReplacing();
    return failure;
}

UpdaterInstall::Outcome UpdaterInstall::takeOver(const QString &downloaded, const Notices &notices) const {
    removeLeftovers();
    const QString image = folder_ + QStringLiteral("/Pavonel-") + release_.version + QStringLiteral(".dmg");
    removeEntirely(image); // where that fails, so does the moving
    QFile file(downloaded);
    if (!file.rename(image)) {
        const QString reason = file.errorString();
        removeEntirely(downloaded);
        return UpdateFailure{QStringLiteral("The download cannot be moved to %1 (%2).").arg(image, reason)};
    }
    return verifyAndInstall(image, notices);
}

/// Of attempts that are long over. Another process may be in the middle of a download.
void UpdaterInstall::removeLeftovers() const {
    const QStringList ours{QStringLiteral("download-*"), QStringLiteral("Pavonel-*.dmg*"),
                           QStringLiteral("pavonel-update-*"), QStringLiteral("Pavonel-staged-*.app")};
    const Instant old = begin_ + -dayLength;
    for (const QFileInfo &entry : QDir(folder_).entryInfoList(ours, QDir::AllEntries | QDir::System)) {
        if (Instant(std::chrono::milliseconds(entry.lastModified().toMSecsSinceEpoch())) < old)
            removeEntirely(entry.filePath());
    }
}

UpdaterInstall::Outcome UpdaterInstall::verifyAndInstall(const QString &image, const Notices &notices) const {
    if (auto failure = verifyChecksum(image))
        return failure;
    if (auto failure = verifyImage(image, notices))
        return failure;
    const QString mountPoint = folder_ + QStringLiteral("/pavonel-update-") +
                               QUuid::createUuid().toString(QUuid::WithoutBraces).left(8);
    if (auto failure = run(diskImages, {QStringLiteral("attach"), image, QStringLiteral("-nobrowse"),
                                        QStringLiteral("-quiet"), QStringLiteral("-mountpoint"), mountPoint}))
        return failure;
    const QString application = mountPoint + QStringLiteral("/Pavonel.app");
    const QString staged =
        folder_ + QStringLiteral("/Pavonel-staged-") + release_.version + QStringLiteral(".app");
    auto failure = verifyApplication(application);
    if (!failure)
        failure = stage(application, staged);
    if (!failure) {
        notices.staged();
        failure = handOver(staged);
    }
    if (!failure)
        notices.handedOver();
    run(diskImages, {QStringLiteral("detach"), mountPoint, QStringLiteral("-quiet")});
    return failure;
}

UpdaterInstall::Outcome UpdaterInstall::verifyChecksum(const QString &image) const {
    QFile file(image);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QFile::ReadOnly) || !hash.addData(&file))
        return UpdateFailure{QStringLiteral("The download cannot be read (%1).").arg(file.errorString())};
    if (hash.result().toHex() == release_.sha256.toLower().toUtf8())
        return {};
    return UpdateFailure{QStringLiteral("The download does not match its checksum. Nothing was installed.")};
}

/// What opens an image reads it before the signature within can be checked. The image's name tells its
/// version.
UpdaterInstall::Outcome UpdaterInstall::verifyImage(const QString &image, const Notices &notices) const {
    if (!release_.signature && imageSignature_ == ImageSignature::welcome)
        return {};
    if (!release_.signature)
        return UpdateFailure{
            QStringLiteral("The update server left out the signature of the update. Nothing was installed.")};
    const QString signature = image + QStringLiteral(".sig");
    QSaveFile file(signature);
    const QByteArray text = release_.signature->toUtf8();
    if (!file.open(QFile::WriteOnly) || file.write(text) != text.size() || !file.commit())
        return UpdateFailure{
            QStringLiteral("The file %1 cannot be written (%2).").arg(signature, file.errorString())};
    auto failure = run(signatures, {QStringLiteral("--verify"), QStringLiteral("--strict"), requirement(),
                                    QStringLiteral("--detached"), signature, image});
    removeEntirely(signature);
    if (!failure)
        notices.imageSigned();
    return failure;
}

UpdaterInstall::Outcome UpdaterInstall::verifyApplication(const QString &application) const {
    if (!QFileInfo::exists(application))
        return UpdateFailure{QStringLiteral("That disk image does not contain Pavonel.")};
    if (auto failure = run(signatures, {QStringLiteral("--verify"), QStringLiteral("--deep"),
                                        QStringLiteral("--strict"), requirement(), application}))
        return failure;
    if (auto failure =
            run(QStringLiteral("/usr/sbin/spctl"), {QStringLiteral("--assess"), QStringLiteral("--type"),
                                                    QStringLiteral("execute"), application}))
        return failure;
    return verifyVersion(application);
}

/// The feed is not signed: it could offer an old release of ours, with its old faults, under a new number.
UpdaterInstall::Outcome UpdaterInstall::verifyVersion(const QString &application) const {
    const auto version = platform_.installation->versionOf(application);
    if (!version)
        return UpdateFailure{
            QStringLiteral("That disk image does not tell its version. Nothing was installed.")};
    if (*version != release_.version)
        return UpdateFailure{
            QStringLiteral("That disk image contains version %1 instead of %2. Nothing was installed.")
                .arg(*version, release_.version)};
    if (!isNewerVersion(*version, platform_.installation->version().value_or(QStringLiteral("0"))))
        return UpdateFailure{
            QStringLiteral("Version %1 is not newer than this one. Nothing was installed.").arg(*version)};
    return {};
}

/// The new version is copied to where this one is before it takes its place: beside the staged copy and what
/// is attached, which may all be on one disk.
UpdaterInstall::Outcome UpdaterInstall::verifyRoomFor(const QString &staged) const {
    const QString place = QFileInfo(platform_.installation->bundle()).path();
    const QStorageInfo disk(place);
    if (!disk.isValid() || disk.bytesAvailable() > sizeOf(staged))
        return {};
    return UpdateFailure{
        QStringLiteral("There is not enough room for the new version in %1. Nothing was installed.")
            .arg(place)};
}

UpdaterInstall::Outcome UpdaterInstall::stage(const QString &application, const QString &staged) const {
    if (auto failure = removeEntirely(staged)) // what is left of it would be installed as well
        return failure;
    auto failure = run(QStringLiteral("/bin/cp"), {QStringLiteral("-R"), application, staged});
    if (!failure)
        failure = verifyRoomFor(staged);
    if (failure)
        removeEntirely(staged); // what fills a disk does not stay on it
    return failure;
}

UpdaterInstall::Outcome UpdaterInstall::handOver(const QString &staged) const {
    const QString text =
        replacementScript(QCoreApplication::applicationPid(), platform_.installation->bundle(), staged);
    if (auto failure = writeExecutable(script(), text.toUtf8()))
        return failure;
    const auto shell = QStringLiteral("/bin/bash");
    if (!platform_.processes->launch(shell, {script()}, ProcessLauncher::SearchPath::ownToolsFirst))
        return UpdateFailure{QStringLiteral("The program %1 cannot be started.").arg(shell)};
    return {};
}

/// What must be true of a signature, as codesign is told it.
QString UpdaterInstall::requirement() const {
    return QStringLiteral("-R=anchor apple generic and certificate leaf[subject.OU] = \"") + teamID_ + u'"';
}

UpdaterInstall::Outcome UpdaterInstall::run(const QString &tool, const QStringList &arguments) const {
    constexpr qsizetype longestQuote = 200;
    const auto outcome = platform_.tools->run(tool, arguments);
    if (const auto *error = std::get_if<ToolRunner::NotStarted>(&outcome))
        return UpdateFailure{error->reason};
    const auto &ended = std::get<ToolRunner::Ended>(outcome);
    if (ended.status == 0)
        return {};
    return UpdateFailure{QFileInfo(tool).fileName() + QStringLiteral(" refused the update: ") +
                         beginning(decoded(ended.output).trimmed(), longestQuote)};
}

} // namespace pavonel
