#include "Platform/Linux/Applications/DesktopFileListing.h"

#include <QDirIterator>
#include <QFile>

#include <algorithm>

namespace pavonel {

namespace {

const QString suffix = QStringLiteral(".desktop");

/// A folder gives its files in an order of its own, which may be another one tomorrow.
void sortByName(std::vector<ListedDesktopFile> &files, std::size_t begin) {
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(begin), files.end(),
              [](const ListedDesktopFile &a, const ListedDesktopFile &b) { return a.path < b.path; });
}

} // namespace

std::vector<ListedDesktopFile> listDesktopFiles(const QStringList &folders,
                                                const std::function<void(const QString &folder)> &enter) {
    std::vector<ListedDesktopFile> files;
    for (const QString &folder : folders) {
        if (!QFile::exists(folder))
            continue;
        enter(folder);
        const std::size_t begin = files.size();
        QDirIterator entries(folder, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            if (entries.fileInfo().isDir()) {
                enter(path);
                continue;
            }
            if (!path.endsWith(suffix))
                continue;
            QString identifier = path.mid(folder.size() + 1).chopped(suffix.size());
            files.push_back({path, identifier.replace(u'/', u'-')});
        }
        sortByName(files, begin);
    }
    return files;
}

QByteArray readDesktopFile(const QString &path) {
    constexpr qint64 largest = 1 << 16; // bytes; a hundred translations fit
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    return file.read(largest);
}

} // namespace pavonel
