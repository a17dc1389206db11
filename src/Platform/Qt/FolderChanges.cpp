#include "Platform/Qt/FolderChanges.h"

#include <QFileInfo>
#include <QSet>

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
        watcher_ = std::make_unique<QFileSystemWatcher>();
        QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, watcher_.get(),
                         [this] { changed_ = true; });
    }
    QSet<QString> places;
    for (const QString &folder : folders_)
        places.insert(existingPartOf(folder));
    const QStringList before = watcher_->directories();
    if (places == QSet<QString>(before.begin(), before.end()))
        return true;
    if (!before.isEmpty())
        watcher_->removePaths(before);
    watcher_->addPaths(places.values());
    return false;
}

} // namespace pavonel
