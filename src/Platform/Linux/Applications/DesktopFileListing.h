#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <vector>

namespace pavonel {

struct ListedDesktopFile {
    QString path;
    QString identifier; ///< The path below its folder with dashes, without the suffix ".desktop".
};

/// The desktop files below some folders, unread; a folder that does not exist has none. The first folder
/// outranks those after it: where an identifier comes again, the first holds. `enter` is told of every
/// folder, subfolders as well, before its files are listed.
std::vector<ListedDesktopFile> listDesktopFiles(const QStringList &folders,
                                                const std::function<void(const QString &folder)> &enter);

/// Empty when the file cannot be read. Of a file that is no sensible desktop file any more, only the
/// beginning.
QByteArray readDesktopFile(const QString &path);

} // namespace pavonel
