#include "Platform/Posix/FileDefaults.h"

#include "Platform/Posix/PrivateFolder.h"
#include "Platform/Posix/ReplaceFile.h"
#include "Platform/Qt/StoreFile.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <sys/stat.h>

namespace pavonel {

namespace {

// Promised are a second and a minute; the rest is for timers that fire late, beats that wait and disks that
// are slow.
constexpr Seconds soonDelay = 0.5;
constexpr Seconds convenientDelay = 51;

constexpr Seconds firstRetryDelay = 5;
constexpr Seconds longestRetryDelay = 600;

/// True for a dangling link too, and when nobody may tell.
bool isAnythingAt(const QString &path) {
    struct stat status {};
    return ::lstat(QFile::encodeName(path).data(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

/// False when something is still in the way.
bool setAside(const QString &path, Instant now) {
    if (!isAnythingAt(path))
        return true;
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(now).time_since_epoch();
    const QString time = QDateTime::fromMSecsSinceEpoch(milliseconds.count(), Qt::UTC)
                             .toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    const QString wanted = path + QStringLiteral(".broken-") + time;
    QString free = wanted;
    for (int number = 2; isAnythingAt(free); ++number)
        free = wanted + u'-' + QString::number(number);
    return ::rename(QFile::encodeName(path).data(), QFile::encodeName(free).data()) == 0;
}

enum class Found { ours, anothers };

bool write(const QString &path, Found found, Instant now, const QByteArray &json) {
    makePrivateFolder(QFileInfo(path).path());
    return (found == Found::ours || setAside(path, now)) && replaceFile(path, json);
}

} // namespace

FileDefaults::FileDefaults(QString path, MainLoop &loop, Writing writing)
    : path_(std::move(path)), loop_(loop), writing_(writing), retryDelay_(firstRetryDelay) {
    makePrivateFolder(QFileInfo(path_).path());
    removeUnfinishedReplacements(path_);
    fileIsOurs_ = read();
    if (!fileIsOurs_)
        setAside(path_, loop_.now());
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
    noteChange(key);
}

void FileDefaults::noteChange(const QString &) {
    schedule(Urgency::whenConvenient);
}

void FileDefaults::remove(const QString &key) {
    encoders_.erase(key);
    if (members_.erase(key) == 0)
        return;
    isChanged_ = true;
    schedule(Urgency::soon);
}

bool FileDefaults::read() {
    auto members = readStoreFile(path_);
    if (members)
        members_ = std::move(*members);
    return members.has_value();
}

void FileDefaults::schedule(Urgency urgency) {
    if (nextWrite_ && nextUrgency_ >= urgency)
        return;
    nextUrgency_ = urgency;
    nextWrite_ = loop_.after(urgency == Urgency::soon ? soonDelay : convenientDelay, [this] { save(); });
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

void FileDefaults::save() {
    nextWrite_.reset();
    if (write_.isPending())
        return schedule(Urgency::soon); // the disk is slower than we change
    collectLazyValues();
    if (!std::exchange(isChanged_, false))
        return;
    const auto work = [this, path = path_, found = fileIsOurs_ ? Found::ours : Found::anothers,
                       now = loop_.now(),
                       json = storedJson::writeMembers(members_)]() -> BackgroundTask::Action {
        return [this, isWritten = write(path, found, now, json)] { finishWriting(isWritten); };
    };
    if (writing_ == Writing::aside)
        write_ = BackgroundTask::start(loop_, work);
    else
        work()();
}

void FileDefaults::flush() {
    constexpr std::chrono::milliseconds timeout{3000}; // the session's end leaves little more
    const QDeadlineTimer deadline(timeout);
    write_.await(timeout);
    save();
    write_.await(std::chrono::milliseconds(deadline.remainingTime()));
}

void FileDefaults::finishWriting(bool isWritten) {
    if (isWritten) {
        fileIsOurs_ = true;
        retryDelay_ = firstRetryDelay;
        return;
    }
    isChanged_ = true;
    if (nextWrite_ && nextUrgency_ == Urgency::soon)
        return;
    nextUrgency_ = Urgency::whenConvenient;
    nextWrite_ = loop_.after(retryDelay_, [this] { save(); });
    retryDelay_ = std::min(retryDelay_ * 2, longestRetryDelay);
}

} // namespace pavonel
