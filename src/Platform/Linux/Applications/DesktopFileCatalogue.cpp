#include "Platform/Linux/Applications/DesktopFileCatalogue.h"

#include <QStandardPaths>

#include <utility>

namespace pavonel {

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
    reading.files = listDesktopFiles(folders_, [this](const QString &folder) { watcher_.addPath(folder); });
    return reading;
}

} // namespace pavonel
