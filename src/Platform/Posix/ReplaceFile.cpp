#include "Platform/Posix/ReplaceFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace pavonel {

namespace {

constexpr char unfinished[] = ".new-";

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }

    explicit operator bool() const { return descriptor_ >= 0; }
    bool sync() const { return ::fsync(descriptor_) == 0; }

    bool write(const QByteArray &content) const {
        qsizetype done = 0;
        while (done < content.size()) {
            const auto written =
                ::write(descriptor_, content.data() + done, static_cast<std::size_t>(content.size() - done));
            if (written < 0 && errno != EINTR)
                return false;
            done += std::max<qsizetype>(written, 0);
        }
        return true;
    }

private:
    int descriptor_;
};

} // namespace

bool replaceFile(const QString &path, const QByteArray &content) {
    const QFileInfo info(path);
    const QByteArray target =
        QFile::encodeName(info.isSymLink() && info.exists() ? info.canonicalFilePath() : path);
    QByteArray temporary = target + unfinished + "XXXXXX";
    const Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file)
        return false;
    if (!file.write(content) || !file.sync() || ::rename(temporary.data(), target.data()) != 0) {
        ::unlink(temporary.data());
        return false;
    }
    const QByteArray folder = QFile::encodeName(QFileInfo(QFile::decodeName(target)).path());
    const Descriptor directory(::open(folder.data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory)
        directory.sync(); // some file systems refuse it; the content is in place all the same
    return true;
}

void removeUnfinishedReplacements(const QString &path) {
    const QFileInfo info(path);
    QDir folder = info.dir();
    const QStringList left =
        folder.entryList({info.fileName() + QLatin1String(unfinished) + QLatin1Char('*')},
                         QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : left)
        folder.remove(name);
}

} // namespace pavonel
