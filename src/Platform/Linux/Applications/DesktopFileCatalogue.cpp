#include "Platform/Linux/Applications/DesktopFileCatalogue.h"

#include "Platform/Linux/Applications/DesktopFileListing.h"
#include "Platform/Qt/FolderChanges.h"
#include "Platform/Qt/sharedWatcher.h"

#include <QDeadlineTimer>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

namespace pavonel {

DesktopFileCatalogue::DesktopFileCatalogue(QStringList folders, MainLoop &loop)
    : folders_(std::move(folders)), loop_(loop), watcher_(sharedWatcher()) {
    QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, &context_,
                     [this](const QString &changed) {
                         if (places_.folders.contains(changed))
                             change_ = Change::within;
                         else if (places_.nearby.contains(changed))
                             change_ = std::max(change_, Change::nearby);
                     });
}

QStringList DesktopFileCatalogue::standardFolders() {
    return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

bool DesktopFileCatalogue::read(std::chrono::milliseconds timeout) {
    if (!task_.isPending() && change_ != Change::none)
        look();
    if (!task_.isPending())
        return std::exchange(isNew_, false);
    const QDeadlineTimer deadline(timeout);
    while (task_.isPending() && !deadline.hasExpired())
        task_.await(std::chrono::milliseconds(deadline.remainingTime()));
    return std::exchange(isNew_, false);
}

DesktopFileCatalogue::Places DesktopFileCatalogue::findPlaces(const QStringList &folders) {
    Places places;
    listDesktopFiles(folders, [&](const QString &folder) { places.folders.insert(folder); });
    for (const QString &folder : folders) {
        if (!places.folders.contains(folder))
            places.nearby.insert(existingPartOf(folder));
    }
    return places;
}

void DesktopFileCatalogue::look() {
    const Change change = std::exchange(change_, Change::none);
    task_ = BackgroundTask::start(loop_, [this, change, folders = folders_]() -> BackgroundTask::Action {
        return [this, change, found = findPlaces(folders)] { watch(found, change); };
    });
}

/// Their disks have answered just now.
void DesktopFileCatalogue::watch(const Places &found, Change change) {
    const Places before = std::exchange(places_, found);
    if (found != before) {
        for (const QString &path : found.folders + found.nearby)
            watcher_->addPath(path);
        change_ = Change::nearby; // something can have come before the watch
    }
    if (change == Change::within || found.folders != before.folders)
        readFiles();
}

void DesktopFileCatalogue::readFiles() {
    task_ = BackgroundTask::start(loop_, [this, folders = folders_]() -> BackgroundTask::Action {
        DesktopFileIndex index;
        for (const ListedDesktopFile &file : listDesktopFiles(folders, [](const QString &) {}))
            index.add(file.identifier, parseDesktopFile(readDesktopFile(file.path)));
        return [this, index] {
            index_ = index;
            isNew_ = true;
        };
    });
}

} // namespace pavonel
