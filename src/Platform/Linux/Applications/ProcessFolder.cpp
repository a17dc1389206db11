#include "Platform/Linux/Applications/ProcessFolder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pavonel {

namespace {

QString unescaped(const QByteArray &text) {
    QByteArray result;
    for (qsizetype index = 0; index < text.size(); ++index) {
        bool isHex = false;
        if (text.mid(index, 2) == "\\x" && index + 3 < text.size()) {
            const int character = text.mid(index + 2, 2).toInt(&isHex, 16);
            if (isHex) {
                result += static_cast<char>(character);
                index += 3;
            }
        }
        if (!isHex)
            result += text[index];
    }
    return QString::fromUtf8(result);
}

std::optional<std::uint64_t> socketInode(const std::array<char, 64> &link, ssize_t length) {
    constexpr std::string_view prefix = "socket:[";
    const std::string_view text(link.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    std::uint64_t inode = 0;
    if (!text.starts_with(prefix) ||
        std::from_chars(text.data() + prefix.size(), text.data() + text.size(), inode).ec != std::errc())
        return {};
    return inode;
}

} // namespace

ProcessFolder::ProcessFolder(int root, ProcessId process) : root_(root), id_(process) {}

/// Without an allocation: this is asked of many processes each second.
ProcessFolder::Path ProcessFolder::pathOf(const char *file) const {
    Path path{};
    char *end = std::to_chars(path.data(), path.data() + path.size(), id_).ptr;
    *end++ = '/';
    qstrncpy(end, file, static_cast<std::size_t>(path.data() + path.size() - end));
    return path;
}

bool ProcessFolder::isOurs() const {
    struct stat status {};
    return ::fstatat(root_, pathOf("").data(), &status, 0) == 0 && status.st_uid == ::geteuid();
}

bool ProcessFolder::isThread() const {
    constexpr QByteArrayView key = "\nTgid:\t";
    const QByteArray status = read("status");
    const auto group = status.indexOf(key);
    if (group < 0)
        return false;
    const auto from = group + key.size();
    return status.mid(from, status.indexOf('\n', from) - from).toInt() != id_;
}

std::optional<QByteArray> ProcessFolder::executable() const {
    std::array<char, 4096> path{};
    const auto length = ::readlinkat(root_, pathOf("exe").data(), path.data(), path.size());
    if (length < 0)
        return errno == EACCES || errno == EPERM ? std::optional(QByteArray()) : std::nullopt;
    QByteArray executable(path.data(), length);
    constexpr auto deleted = " (deleted)"; // replaced by an update while it runs
    if (executable.endsWith(deleted))
        executable.chop(static_cast<qsizetype>(qstrlen(deleted)));
    return executable;
}

QByteArray ProcessFolder::read(const char *file, qsizetype most) const {
    constexpr int withoutWaiting = O_NONBLOCK | O_NOFOLLOW; // a sandbox may offer a pipe in place of a file
    const int descriptor = ::openat(root_, pathOf(file).data(), O_RDONLY | O_CLOEXEC | withoutWaiting);
    if (descriptor < 0)
        return {};
    QByteArray contents;
    std::array<char, 4096> part{}; // the kernel hands out such files in parts
    ssize_t length = 0;
    while (contents.size() < most && (length = ::read(descriptor, part.data(), part.size())) > 0)
        contents.append(part.data(), length);
    ::close(descriptor);
    return contents;
}

QByteArrayList ProcessFolder::arguments() const {
    QByteArray line = read("cmdline");
    if (line.endsWith('\0'))
        line.chop(1);
    return line.isEmpty() ? QByteArrayList() : line.split('\0');
}

QString ProcessFolder::flatpak() const {
    const auto lines = read("root/.flatpak-info").split('\n');
    bool inApplication = false;
    for (const QByteArray &line : lines) {
        if (line.startsWith('['))
            inApplication = line == "[Application]";
        else if (inApplication && line.startsWith("name="))
            return QString::fromUtf8(line.mid(5));
    }
    return {};
}

QByteArray ProcessFolder::unit() const {
    const QByteArray groups = read("cgroup");
    for (const QByteArray &line : groups.split('\n')) {
        if (!line.startsWith("0::") && !line.contains(":name=systemd:"))
            continue;
        const auto parts = line.split('/');
        for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
            if (part->endsWith(".scope") || part->endsWith(".service"))
                return *part;
        }
    }
    return {};
}

std::vector<std::uint64_t> ProcessFolder::sockets() const {
    const int folder = ::openat(root_, pathOf("fd").data(), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(folder < 0 ? nullptr : ::fdopendir(folder),
                                                       &::closedir);
    std::vector<std::uint64_t> inodes;
    while (const dirent *entry = entries ? ::readdir(entries.get()) : nullptr) {
        std::array<char, 64> link{};
        const auto length = ::readlinkat(folder, entry->d_name, link.data(), link.size());
        if (const auto inode = socketInode(link, length))
            inodes.push_back(*inode);
    }
    return inodes;
}

QString identifierOfUnit(const QByteArray &unit) {
    // app[-launcher]-ID-random.scope, app[-launcher]-ID[@random].service; dashes of ID itself are escaped.
    const auto suffix = std::max<qsizetype>(unit.lastIndexOf('.'), 0);
    QByteArray name = unit.left(suffix);
    const bool isScope = unit.mid(suffix) == ".scope";
    if (name.startsWith("snap.")) { // snap.package.command-uuid.scope
        constexpr qsizetype uuid = 37;
        const auto parts = name.chopped(std::min(uuid, name.size())).split('.');
        return parts.size() == 3 ? QString::fromUtf8(parts[1] + '_' + parts[2]) : QString();
    }
    if (!name.startsWith("app-") && !name.startsWith("dbus-"))
        return {};
    name.remove(0, name.indexOf('-') + 1);
    if (isScope)
        name.truncate(std::max<qsizetype>(name.lastIndexOf('-'), 0));
    else if (name.contains('@'))
        name = name.left(name.lastIndexOf('@'));
    return unescaped(name.mid(name.lastIndexOf('-') + 1));
}

} // namespace pavonel
