#include "Fuzz/Target.h"
#include "Fuzz/onlyOne.h"
#include "Platform/ForeignFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

namespace pavonel::fuzz {

namespace {

const QByteArray content = "a picture";
constexpr qint64 largest = 100;

/// A folder with one of each kind that a path can lead to.
class Places {
public:
    Places() {
        write("picture.png", content);
        write("large", QByteArray(largest + 1, 'x'));
        QDir(folder_.path()).mkdir(QStringLiteral("folder"));
        require(::mkfifo(inside("pipe").constData(), 0600) == 0);
        require(::symlink("picture.png", inside("link").constData()) == 0);
        require(::symlink("circle", inside("circle").constData()) == 0);
        require(::symlink("/dev/zero", inside("endless").constData()) == 0);
    }

    QString path(const QByteArray &name) const { return folder_.filePath(QString::fromUtf8(name)); }

private:
    QByteArray inside(const char *name) const { return QFile::encodeName(path(name)); }
    void write(const char *name, const QByteArray &bytes) const {
        QFile file(path(name));
        require(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QTemporaryDir folder_;
};

} // namespace

/// A path within a folder: only a file is read, only a small one, and whole.
void picturePath(const QByteArray &input) {
    const auto &places = onlyOne<Places>();
    if (input.contains("..") || input.startsWith('/'))
        return; // not into this machine's own folders
    const auto read = readForeignFile(places.path(input), largest);
    require(!read || *read == content);
}

} // namespace pavonel::fuzz
