#include "Platform/Linux/Applications/ProgramStarts.h"

#include <array>
#include <utility>

#include <sys/inotify.h>
#include <unistd.h>

namespace pavonel {

ProgramStarts::ProgramStarts(QByteArrayList names, const QByteArrayList &folders)
    : names_(std::move(names)), notices_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      arrival_(QSocketNotifier::Read) {
    if (notices_ < 0)
        return;
    QObject::connect(&arrival_, &QSocketNotifier::activated, &arrival_,
                     [this] { arrival_.setEnabled(false); });
    arrival_.setSocket(notices_);
    arrival_.setEnabled(true);
    for (const QByteArray &folder : folders) {
        const int watched = ::inotify_add_watch(notices_, folder.constData(), IN_CREATE | IN_MOVED_TO);
        if (watched < 0)
            continue;
        folders_.insert_or_assign(watched, folder);
        for (const QByteArray &name : names_)
            watch(folder + '/' + name);
    }
}

ProgramStarts::~ProgramStarts() {
    if (notices_ >= 0)
        ::close(notices_);
}

QByteArrayList ProgramStarts::searchPath() {
    QByteArrayList folders = qgetenv("PATH").split(':');
    folders.removeIf([](const QByteArray &folder) { return !folder.startsWith('/'); });
    return folders;
}

/// As a rule there is no such file.
void ProgramStarts::watch(const QByteArray &file) const {
    ::inotify_add_watch(notices_, file.constData(), IN_OPEN);
}

bool ProgramStarts::anyNew() {
    if (notices_ < 0 || arrival_.isEnabled())
        return false;
    arrival_.setEnabled(true);
    alignas(inotify_event) std::array<char, 4096> buffer{};
    bool any = false;
    for (;;) {
        const ssize_t length = ::read(notices_, buffer.data(), buffer.size());
        if (length <= 0)
            return any;
        for (const char *at = buffer.data(); at < buffer.data() + length;) {
            const auto &notice = *reinterpret_cast<const inotify_event *>(at);
            any = isStart(notice.wd, notice.mask, notice.len > 0 ? QByteArray(notice.name) : QByteArray()) ||
                  any;
            at += sizeof notice + notice.len;
        }
    }
}

/// A file that has just come may have been started before it was watched.
bool ProgramStarts::isStart(int watched, std::uint32_t what, const QByteArray &name) const {
    if ((what & IN_OPEN) != 0)
        return true;
    const auto folder = folders_.find(watched);
    if (folder == folders_.end() || !names_.contains(name))
        return false;
    watch(folder->second + '/' + name);
    return true;
}

} // namespace pavonel
