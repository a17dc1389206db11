#pragma once

#include <QByteArray>
#include <QTemporaryFile>

namespace pavonel {

/// Where the body of a response goes, piece by piece.
class HttpBody {
public:
    HttpBody() = default;
    HttpBody(const HttpBody &) = delete;
    HttpBody &operator=(const HttpBody &) = delete;
    virtual ~HttpBody() = default;

    /// False when there is no room for it.
    virtual bool take(const QByteArray &piece) = 0;
};

/// In memory, up to a limit.
class HttpBodyInMemory final : public HttpBody {
public:
    explicit HttpBodyInMemory(qint64 largest) : largest_(largest) {}

    bool take(const QByteArray &piece) override;
    const QByteArray &data() const { return data_; }

private:
    qint64 largest_;
    QByteArray data_;
};

/// In a new file, which goes with this object unless it is kept; where the file system can do that, also when
/// the process is killed.
class HttpBodyInFile final : public HttpBody {
public:
    HttpBodyInFile(const QString &folder, qint64 largest, qint64 spaceToLeave);

    bool take(const QByteArray &piece) override;

    /// The path of the file, complete and from now on the caller's; empty when not everything could be
    /// written.
    QString keep();

private:
    bool isRoomFor(qint64 more);

    QTemporaryFile file_;
    qint64 largest_;
    qint64 spaceToLeave_;
    qint64 size_ = 0;
    qint64 known_ = 0; ///< As many bytes more were free when last asked.
};

} // namespace pavonel
