#include "Platform/Qt/HttpBody.h"

#include <QStorageInfo>

namespace pavonel {

bool HttpBodyInMemory::take(const QByteArray &piece) {
    if (piece.size() > largest_ - data_.size())
        return false;
    data_ += piece;
    return true;
}

HttpBodyInFile::HttpBodyInFile(const QString &folder, qint64 largest, qint64 spaceToLeave)
    : file_(folder + QStringLiteral("/download-XXXXXX")), largest_(largest), spaceToLeave_(spaceToLeave) {
    file_.open(); // where that fails, so will the writing
}

bool HttpBodyInFile::take(const QByteArray &piece) {
    if (piece.size() > largest_ - size_ || !isRoomFor(piece.size()) || file_.write(piece) != piece.size())
        return false;
    size_ += piece.size();
    return true;
}

/// Asks the file system once a megabyte.
bool HttpBodyInFile::isRoomFor(qint64 more) {
    constexpr qint64 step = 1'048'576;
    known_ -= more;
    if (known_ < 0) {
        const QStorageInfo disk(QFileInfo(file_.fileTemplate()).path());
        if (disk.bytesAvailable() - spaceToLeave_ < more + step)
            return false;
        known_ = step;
    }
    return true;
}

QString HttpBodyInFile::keep() {
    if (!file_.flush())
        return {};
    QString path = file_.fileName(); // only now does it get a name
    file_.setAutoRemove(path.isEmpty());
    file_.close();
    return path;
}

} // namespace pavonel
