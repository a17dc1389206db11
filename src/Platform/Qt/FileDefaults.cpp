#include "Platform/Qt/FileDefaults.h"

#include "Platform/Qt/PrivateFolder.h"
#include "Platform/Qt/ReplaceFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <sys/stat.h>

namespace pavonel {

namespace {

// Promised are a second and a minute; the rest is for timers that fire late and disks that are slow.
constexpr Seconds soonDelay = 0.5;
constexpr Seconds convenientDelay = 55;

constexpr Seconds firstRetryDelay = 5;
constexpr Seconds longestRetryDelay = 600;

/// A store of ours holds kilobytes. Anything of this size came about by accident, and to write it anew every
/// minute would wear out the disk.
constexpr qint64 largestUsableFile = 16'777'216;

/// True for a dangling link too, and when nobody may tell.
bool isAnythingAt(const QString &path) {
    struct stat status {};
    return ::lstat(QFile::encodeName(path).data(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

} // namespace

FileDefaults::FileDefaults(QString path, MainLoop &loop)
    : path_(std::move(path)), loop_(loop), retryDelay_(firstRetryDelay) {
    makePrivateFolder(QFileInfo(path_).path());
    removeUnfinishedReplacements(path_);
    fileIsOurs_ = read();
    if (!fileIsOurs_)
        setAside();
}

std::optional<StoredValue> FileDefaults::value(const QString &key) const {
    if (const auto encoder = encoders_.find(key); encoder != encoders_.end()) {
        if (auto current = encoder->second())
            return current;
    }
    const auto found = members_.find(key);
    return found == members_.end() ? std::nullopt : storedJson::decode(found->second);
}

void FileDefaults::set(const QString &key, StoredValue value) {
    auto json = storedJson::encode(value);
    if (!json)
        return;
    encoders_.erase(key);
    QByteArray &stored = members_[key];
    if (stored == *json)
        return;
    stored = std::move(*json);
    isChanged_ = true;
    schedule(Urgency::soon);
}

void FileDefaults::setLazily(const QString &key, Encoder encode) {
    encoders_[key] = std::move(encode);
    schedule(Urgency::whenConvenient);
}

void FileDefaults::remove(const QString &key) {
    encoders_.erase(key);
    if (members_.erase(key) == 0)
        return;
    isChanged_ = true;
    schedule(Urgency::soon);
}

void FileDefaults::flush() {
    nextWrite_.reset();
    collectLazyValues();
    if (!isChanged_)
        return;
    if (write()) {
        isChanged_ = false;
        retryDelay_ = firstRetryDelay;
        return;
    }
    nextUrgency_ = Urgency::whenConvenient;
    nextWrite_ = loop_.after(retryDelay_, [this] { flush(); });
    retryDelay_ = std::min(retryDelay_ * 2, longestRetryDelay);
}

bool FileDefaults::read() {
    QFile file(path_);
    // Opening anything else than a regular file could block for ever.
    if (!QFileInfo(file).isFile() || file.size() > largestUsableFile || !file.open(QFile::ReadOnly))
        return false;
    const QByteArray json = file.readAll();
    auto members = file.error() == QFile::NoError ? storedJson::readMembers(json) : std::nullopt;
    if (members)
        members_ = std::move(*members);
    return members.has_value();
}

/// False when something is still in the way.
bool FileDefaults::setAside() {
    if (!isAnythingAt(path_))
        return true;
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(loop_.now()).time_since_epoch();
    const QString time = QDateTime::fromMSecsSinceEpoch(milliseconds.count(), Qt::UTC)
                             .toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    const QString wanted = path_ + QStringLiteral(".broken-") + time;
    QString free = wanted;
    for (int number = 2; isAnythingAt(free); ++number)
        free = QStringLiteral("%1-%2").arg(wanted).arg(number);
    return ::rename(QFile::encodeName(path_).data(), QFile::encodeName(free).data()) == 0;
}

void FileDefaults::schedule(Urgency urgency) {
    if (nextWrite_ && nextUrgency_ >= urgency)
        return;
    nextUrgency_ = urgency;
    nextWrite_ = loop_.after(urgency == Urgency::soon ? soonDelay : convenientDelay, [this] { flush(); });
}

void FileDefaults::collectLazyValues() {
    for (const auto &[key, encoder] : encoders_) {
        const auto current = encoder();
        const auto json = current ? storedJson::encode(*current) : std::nullopt;
        if (!json || members_[key] == *json)
            continue;
        members_[key] = *json;
        isChanged_ = true;
    }
}

bool FileDefaults::write() {
    makePrivateFolder(QFileInfo(path_).path());
    if (!fileIsOurs_ && !setAside())
        return false;
    const bool isWritten = replaceFile(path_, storedJson::writeMembers(members_));
    fileIsOurs_ = fileIsOurs_ || isWritten;
    return isWritten;
}

} // namespace pavonel
