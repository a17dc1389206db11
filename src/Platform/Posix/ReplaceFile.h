#pragma once

#include <QByteArray>
#include <QString>

namespace pavonel {

/// Puts `content` in the place of the file at once: whoever reads, also after a crash or a power cut, sees
/// the old content or the new one, whole. Only the user may read the new file. A symbolic link stays and its
/// target is replaced. False when it could not be done; then the old content is still there.
bool replaceFile(const QString &path, const QByteArray &content);

/// Removes what an earlier process left beside the file when it was killed in the middle of replacing it.
void removeUnfinishedReplacements(const QString &path);

} // namespace pavonel
