#include "EndToEnd/DeadDisk.h"

#include "support/files.h"
#include "support/waitUntil.h"

namespace pavonel::test {

DeadDisk::DeadDisk(const QString &place)
    : folder_(home_.filePath(QStringLiteral("disk"))),
      place_(place.isEmpty() ? home_.filePath(QStringLiteral("place")) : place) {
    for (const QString &folder : {folder_, place_})
        QDir().mkpath(folder);
}

QStringList DeadDisk::inFront() const {
    return {QStringLiteral("unshare"), QStringLiteral("-rm"),
            QFileInfo(QStringLiteral(PAVONEL_PROGRAM)).path() + QStringLiteral("/dead-disk"), folder_,
            place_};
}

void DeadDisk::die() {
    writeFile(folder_ + QStringLiteral(".dead"), {});
}

void DeadDisk::revive() {
    EXPECT_TRUE(QFile::remove(folder_ + QStringLiteral(".dead")));
}

bool DeadDisk::waitForReader() const {
    return waitUntil([this] { return QFile::exists(folder_ + QStringLiteral(".read")); });
}

} // namespace pavonel::test
