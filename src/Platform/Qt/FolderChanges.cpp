#include "Platform/Qt/FolderChanges.h"

#include "Platform/Qt/sharedWatcher.h"

#include <QFileInfo>

namespace pavonel {

QString existingPartOf(QString folder) {
    while (folder.size() > 1 && !QFileInfo::exists(folder))
        folder = QFileInfo(folder).path();
    return folder;
}

FolderChanges::FolderChanges(const QStringList &files) {
    for (const QString &file : files)
        folders_.append(QFileInfo(file).absolutePath());
}

bool FolderChanges::any() {
    if (!changed_)
        return false;
    changed_ = !watch();
    return true;
}

/// False when something can have changed before the watch.
bool FolderChanges::watch() {
    if (!watcher_) {
        watcher_ = sharedWatcher();
        QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, &context_,
                         [this](const QString &place) { changed_ = changed_ || places_.contains(place); });
    }
    places_.clear();
    for (const QString &folder : folders_)
        places_.insert(existingPartOf(folder));
    const QStringList watched = watcher_->directories();
    const auto fresh = places_ - QSet<QString>(watched.begin(), watched.end());
    if (!fresh.isEmpty())
        watcher_->addPaths(fresh.values());
    return fresh.isEmpty();
}

} // namespace pavonel
