#include "Platform/Linux/Applications/DesktopFileCatalogue.h"

#include <QDirIterator>
#include <QFile>
#include <QStandardPaths>

#include <utility>

namespace pavonel {

namespace {

const QString suffix = QStringLiteral(".desktop");

std::optional<DesktopFile> readFile(const QString &path) {
    constexpr qint64 largest = 1 << 16; // bytes; a hundred translations fit
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    return parseDesktopFile(file.read(largest));
}

} // namespace

DesktopFileCatalogue::DesktopFileCatalogue(QStringList folders) : folders_(std::move(folders)) {
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, [this] { stale_ = true; });
}

QStringList DesktopFileCatalogue::standardFolders() {
    return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

bool DesktopFileCatalogue::read(QDeadlineTimer deadline) {
    if (!reading_) {
        if (!std::exchange(stale_, false))
            return false;
        reading_ = listFiles();
    }
    while (reading_->next < reading_->files.size()) {
        if (deadline.hasExpired())
            return false;
        const Found &found = reading_->files[reading_->next++];
        reading_->index.add(found.identifier, readFile(found.path));
    }
    index_ = std::move(reading_->index);
    reading_.reset();
    return true;
}

DesktopFileCatalogue::Reading DesktopFileCatalogue::listFiles() {
    Reading reading;
    if (const QStringList watched = watcher_.directories(); !watched.isEmpty())
        watcher_.removePaths(watched);
    for (const QString &folder : folders_) {
        if (!QFile::exists(folder))
            continue;
        watcher_.addPath(folder);
        QDirIterator entries(folder, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            if (entries.fileInfo().isDir()) {
                watcher_.addPath(path);
                continue;
            }
            if (!path.endsWith(suffix))
                continue;
            // A subfolder becomes part of the identifier.
            QString identifier = path.mid(folder.size() + 1).chopped(suffix.size());
            reading.files.push_back({path, identifier.replace(u'/', u'-')});
        }
    }
    return reading;
}

} // namespace pavonel
