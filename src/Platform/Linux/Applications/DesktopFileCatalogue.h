#pragma once

#include "Platform/Linux/Applications/DesktopFileListing.h"
#include "Platform/Linux/Applications/DesktopFiles.h"

#include <QDeadlineTimer>
#include <QFileSystemWatcher>
#include <QSet>
#include <QStringList>

#include <cstddef>
#include <optional>
#include <vector>

namespace pavonel {

/// Keeps the index of the installed applications. It is read in slices, because hundreds of files on a cold
/// disk take seconds, and again only when one of the folders changed.
class DesktopFileCatalogue {
public:
    /// The first folder outranks those after it.
    explicit DesktopFileCatalogue(QStringList folders);

    /// Where this desktop keeps its desktop files.
    static QStringList standardFolders();

    /// Goes on reading until the deadline. True when `index` is a new one.
    bool read(QDeadlineTimer deadline);

    const DesktopFileIndex &index() const { return index_; }

private:
    struct Reading {
        std::vector<ListedDesktopFile> files;
        std::size_t next = 0;
        DesktopFileIndex index;
    };

    Reading listFiles();
    void notice(const QString &changed);
    void await(const QString &folder);

    QStringList folders_;
    QSet<QString> listed_; ///< Folders and subfolders that there were.
    DesktopFileIndex index_;
    bool stale_ = true;
    std::optional<Reading> reading_;
    QFileSystemWatcher watcher_;
};

} // namespace pavonel
