#include "Platform/Qt/StoreFile.h"

#include <QFile>
#include <QFileInfo>

namespace pavonel {

namespace {

/// A store of ours holds kilobytes. Anything of this size came about by accident, and to write it anew every
/// minute would wear out the disk.
constexpr qint64 largestUsableFile = 16'777'216;

} // namespace

std::optional<storedJson::Members> readStoreFile(const QString &path) {
    QFile file(path);
    // Opening anything else than a regular file could block for ever.
    if (!QFileInfo(file).isFile() || file.size() > largestUsableFile || !file.open(QFile::ReadOnly))
        return {};
    const QByteArray json = file.readAll();
    return file.error() == QFile::NoError ? storedJson::readMembers(json) : std::nullopt;
}

StoredEntry readStoredEntryFrom(const QString &path, const QString &key) {
    const auto members = readStoreFile(path);
    if (!members)
        return {{}, QFileInfo::exists(path) || QFileInfo(path).isSymLink()};
    const auto found = members->find(key);
    if (found == members->end())
        return {};
    auto value = storedJson::decode(found->second);
    const bool isDamaged = !value;
    return {std::move(value), isDamaged};
}

} // namespace pavonel
