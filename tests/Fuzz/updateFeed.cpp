#include "Core/UpdaterRelease.h"
#include "Fuzz/Target.h"

#include <QByteArrayList>

namespace pavonel::fuzz {

/// The feed, and behind a line break two versions of which at most one is newer than the other.
void updateFeed(const QByteArray &input) {
    const auto release = decodeRelease(input);
    const QByteArrayList lines = input.split('\n');
    const QString one = release ? release->version : QString::fromUtf8(lines.first());
    const QString other = QString::fromUtf8(lines.last());
    require(!(isNewerVersion(one, other) && isNewerVersion(other, one)));
    require(!isNewerVersion(one, one));
}

} // namespace pavonel::fuzz
