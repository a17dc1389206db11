#include "Platform/ForeignFile.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QMultiHash>
#include <QMutex>

#include <algorithm>
#include <chrono>

namespace pavonel {

namespace {

constexpr std::chrono::seconds timeout{30};

/// The files that are being read in this process, with the time at which their callers are overdue.
class Readings {
public:
    /// False when the disk holds an earlier caller.
    bool begin(const QString &path, QDeadlineTimer deadline) {
        const QMutexLocker lock(&guard_);
        const auto earlier = byPath_.values(path);
        if (std::ranges::any_of(earlier, [](const QDeadlineTimer &each) { return each.hasExpired(); }))
            return false;
        byPath_.insert(path, deadline);
        return true;
    }

    void end(const QString &path, QDeadlineTimer deadline) {
        const QMutexLocker lock(&guard_);
        byPath_.remove(path, deadline);
    }

private:
    QMutex guard_;
    QMultiHash<QString, QDeadlineTimer> byPath_;
};

/// Never destroyed: a late caller can come back while the program ends.
Readings &readings() {
    static auto *all = new Readings;
    return *all;
}

std::optional<QByteArray> read(const QString &path, qint64 largest, QDeadlineTimer deadline) {
    QFile file(path);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    constexpr qint64 step = 1 << 18;
    QByteArray content;
    for (QByteArray part = file.read(step); !part.isEmpty(); part = file.read(step)) {
        content += part;
        if (content.size() > largest || deadline.hasExpired())
            return {};
    }
    return file.error() == QFile::NoError ? std::optional(content) : std::nullopt;
}

} // namespace

std::optional<QByteArray> readForeignFile(const QString &path, qint64 largest) {
    const QDeadlineTimer deadline(timeout);
    if (!readings().begin(path, deadline))
        return {};
    auto content = read(path, largest, deadline);
    readings().end(path, deadline);
    return content;
}

} // namespace pavonel
