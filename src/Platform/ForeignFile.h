#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace pavonel {

/// The content of a file that somebody else named, which can be anything and lie anywhere: to be called from
/// a background task, since a disk that stopped answering holds the caller for ever.
///
/// Absent for anything else than a regular file, for one of more than `largest` bytes, for one that cannot be
/// read in half a minute; and at once while a disk holds an earlier caller with the same path for longer.
std::optional<QByteArray> readForeignFile(const QString &path, qint64 largest);

} // namespace pavonel
