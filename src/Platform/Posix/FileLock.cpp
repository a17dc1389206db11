#include "Platform/Posix/FileLock.h"

#include "Platform/Posix/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace pavonel {

namespace {

int opened(const QString &path) {
    makePrivateFolder(QFileInfo(path).path());
    return ::open(QFile::encodeName(path).data(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                  0600);
}

FileLock::State locked(int descriptor) {
    if (descriptor < 0)
        return FileLock::State::impossible;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return FileLock::State::held;
    return errno == EWOULDBLOCK ? FileLock::State::takenByAnother : FileLock::State::impossible;
}

} // namespace

FileLock::FileLock(const QString &path) : descriptor_(opened(path)), state_(locked(descriptor_)) {}

FileLock::~FileLock() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

} // namespace pavonel
