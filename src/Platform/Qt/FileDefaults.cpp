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
        free = QStringLiteral("%1-%2").arg(wanted).arg(number);
    return ::rename(QFile::encodeName(path).data(), QFile::encodeName(free).data()) == 0;
}

enum class Found { ours, anothers };

bool write(const QString &path, Found found, Instant now, const QByteArray &json) {
    makePrivateFolder(QFileInfo(path).path());
    return (found == Found::ours || setAside(path, now)) && replaceFile(path, json);
}

} // namespace

FileDefaults::FileDefaults(QString path, MainLoop &loop, std::launch threads)
    : path_(std::move(path)), loop_(loop), threads_(threads), retryDelay_(firstRetryDelay) {
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
    finishWriting();
    startWriting(std::launch::deferred);
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
    if (write_.valid())
        schedule(Urgency::soon); // the disk is slower than we change
    else
        startWriting(threads_);
}

void FileDefaults::startWriting(std::launch threads) {
    nextWrite_.reset();
    collectLazyValues();
    if (!std::exchange(isChanged_, false))
        return;
    writing_ = std::make_shared<bool>();
    write_ = std::async(threads, [path = path_, found = fileIsOurs_ ? Found::ours : Found::anothers,
                                  now = loop_.now(), json = storedJson::writeMembers(members_), &loop = loop_,
                                  this, current = std::weak_ptr(writing_)] {
        const bool isWritten = write(path, found, now, json);
        loop.post([this, current] {
            if (!current.expired())
                finishWriting();
        });
        return isWritten;
    });
    if (write_.wait_for(std::chrono::seconds(0)) == std::future_status::deferred)
        finishWriting();
}

void FileDefaults::finishWriting() {
    if (!write_.valid())
        return;
    const bool isWritten = write_.get();
    writing_.reset();
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
