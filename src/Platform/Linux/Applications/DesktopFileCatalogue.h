#pragma once

#include "Platform/BackgroundTask.h"
#include "Platform/Linux/Applications/DesktopFiles.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <memory>

namespace pavonel {

/// Keeps the index of the installed applications. It is read aside, because hundreds of files on a cold disk
/// take seconds and a dead one never answers, and again only when one of the folders changed.
class DesktopFileCatalogue {
public:
    /// The first folder outranks those after it.
    DesktopFileCatalogue(QStringList folders, MainLoop &loop);

    /// Where this desktop keeps its desktop files.
    static QStringList standardFolders();

    /// Begins to read what is outdated and waits for it, at most so long. True when `index` is a new one.
    bool read(std::chrono::milliseconds timeout);

    const DesktopFileIndex &index() const { return index_; }

private:
    struct Places {
        QSet<QString> folders; ///< With their subfolders, as far as there are any.
        QSet<QString> nearby;  ///< The existing part of the way to each folder that is missing.

        bool operator==(const Places &) const = default;
    };
    enum class Change { none, nearby, within };

    static Places findPlaces(const QStringList &folders);
    void look();
    void watch(const Places &found, Change change);
    void readFiles();

    QStringList folders_;
    MainLoop &loop_;
    Places places_; ///< That are watched.
    DesktopFileIndex index_;
    bool isNew_ = false;
    Change change_ = Change::within; ///< Since the last look.
    BackgroundTask task_;
    std::shared_ptr<QFileSystemWatcher> watcher_;
    QObject context_; ///< The watcher can outlive us.
};

} // namespace pavonel
