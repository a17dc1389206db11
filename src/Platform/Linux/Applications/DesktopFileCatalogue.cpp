#include "Platform/Linux/Applications/DesktopFileCatalogue.h"

#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace pavonel {

namespace {

/// The folder, or as much of the way to it as there is.
QString existingPartOf(QString folder) {
    while (folder.size() > 1 && !QFileInfo::exists(folder))
        folder = QFileInfo(folder).path();
    return folder;
}

} // namespace

DesktopFileCatalogue::DesktopFileCatalogue(QStringList folders) : folders_(std::move(folders)) {
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                     [this](const QString &changed) { notice(changed); });
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
        const ListedDesktopFile &file = reading_->files[reading_->next++];
        reading_->index.add(file.identifier, parseDesktopFile(readDesktopFile(file.path)));
    }
    index_ = std::move(reading_->index);
    reading_.reset();
    return true;
}

DesktopFileCatalogue::Reading DesktopFileCatalogue::listFiles() {
    Reading reading;
    if (const QStringList watched = watcher_.directories(); !watched.isEmpty())
        watcher_.removePaths(watched);
    listed_.clear();
    reading.files = listDesktopFiles(folders_, [this](const QString &folder) {
        listed_.insert(folder);
        watcher_.addPath(folder);
    });
    for (const QString &folder : folders_)
        await(folder);
    return reading;
}

void DesktopFileCatalogue::notice(const QString &changed) {
    stale_ = stale_ || listed_.contains(changed);
    for (const QString &folder : folders_)
        await(folder);
}

/// The first application of its kind brings the folder along, and some of the folders above.
void DesktopFileCatalogue::await(const QString &folder) {
    if (listed_.contains(folder))
        return;
    QString watched;
    while (watched != existingPartOf(folder)) {
        watched = existingPartOf(folder);
        watcher_.addPath(watched);
    }
    stale_ = stale_ || watched == folder;
}

} // namespace pavonel
