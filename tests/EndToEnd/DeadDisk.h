#pragma once

#include <QStringList>
#include <QTemporaryDir>

namespace pavonel::test {

/// A disk that the program sees and that can stop answering. Needs the right to mount: `mayMount`.
class DeadDisk {
public:
    /// Where it is mounted; a folder that exists, or one of its own.
    explicit DeadDisk(const QString &place = {});

    /// What to put in front of the program's command line.
    QStringList inFront() const;

    /// A path on the disk, as the program sees it, and where to find it here.
    QString path(const QString &name) const { return place_ + u'/' + name; }
    QString file(const QString &name) const { return folder_ + u'/' + name; }

    void die();
    void revive();

    /// Until a file has been read since the disk was made.
    bool waitForReader() const;

private:
    QTemporaryDir home_;
    QString folder_;
    QString place_;
};

} // namespace pavonel::test
