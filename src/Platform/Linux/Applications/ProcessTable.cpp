#include "Platform/Linux/Applications/ProcessTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace pavonel {

namespace {

constexpr int looksWhileYoung = 10; // at one a second: slow starters are what they will be by then

ProcessId processIdOf(const char *name) {
    ProcessId id = 0;
    const char *const end = name + qstrlen(name);
    return std::from_chars(name, end, id).ptr == end ? id : 0;
}

} // namespace

ProcessTable::ProcessTable(const QByteArray &root, Identify identify)
    : root_(::open(root.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), identify_(std::move(identify)) {}

ProcessTable::~ProcessTable() {
    if (root_ >= 0)
        ::close(root_);
}

void ProcessTable::refresh(QDeadlineTimer deadline) {
    if (root_ < 0)
        return;
    lookAgainAtYoung();
    const bool anyEnded = dropEnded();
    if (wereBorn() || anyEnded)
        walk();
    if (hasPending_)
        open(deadline);
}

void ProcessTable::reconsider() {
    for (Known &process : known_)
        process.isPending = true;
    hasPending_ = true;
}

std::vector<Application> ProcessTable::applications() const {
    std::vector<Application> result;
    result.reserve(members_.size());
    for (const auto &[identifier, members] : members_)
        result.push_back({members.front().id, identifier});
    return result;
}

std::vector<ProcessId> ProcessTable::processesOf(const QString &identifier) const {
    std::vector<ProcessId> ids;
    if (const auto found = members_.find(identifier); found != members_.end()) {
        for (const Member &member : found->second)
            ids.push_back(member.id);
    }
    return ids;
}

/// An application stands as long as one of its processes still runs the program it was found with.
bool ProcessTable::dropEnded() {
    std::vector<ProcessId> ended;
    for (auto &[identifier, members] : members_) {
        const auto alive = std::find_if(members.begin(), members.end(), [this](const Member &member) {
            return folder(member.id).executable() == member.executable;
        });
        for (auto gone = members.begin(); gone != alive; ++gone)
            ended.push_back(gone->id);
    }
    for (const ProcessId id : ended) {
        release(id);
        std::erase_if(known_, [id](const Known &process) { return process.id == id; });
    }
    return !ended.empty();
}

/// Between its birth and the start of its program a process looks like its parent, and launchers turn into
/// what they launch.
void ProcessTable::lookAgainAtYoung() {
    for (Young &young : young_) {
        --young.looksLeft;
        const ProcessFolder process = folder(young.member.id);
        const auto executable = process.executable();
        if (!executable) {
            young.looksLeft = 0;
        } else if (*executable != young.member.executable) {
            young.member.executable = *executable;
            release(young.member.id);
            place(process, *executable);
        }
    }
    std::erase_if(young_, [](const Young &young) { return young.looksLeft <= 0; });
}

/// The kernel tells the number that it gave last, to threads too. Without such a word, any moment can have
/// seen a birth.
bool ProcessTable::wereBorn() {
    const int descriptor = ::openat(root_, "loadavg", O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return true;
    std::array<char, 128> text{};
    const auto length = ::read(descriptor, text.data(), text.size());
    ::close(descriptor);
    QByteArray last(text.data(), std::max<qsizetype>(length, 0));
    last.remove(0, last.lastIndexOf(' ') + 1);
    return last.isEmpty() || std::exchange(lastBorn_, last) != last;
}

void ProcessTable::walk() {
    const int descriptor = ::openat(root_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(descriptor < 0 ? nullptr : ::fdopendir(descriptor),
                                                       &::closedir);
    std::vector<Known> listed;
    listed.reserve(known_.size() + 16);
    while (const dirent *entry = entries ? ::readdir(entries.get()) : nullptr) {
        if (const ProcessId id = processIdOf(entry->d_name); id > 0)
            listed.push_back({id, entry->d_ino, true});
    }
    const auto byId = [](const Known &a, const Known &b) { return a.id < b.id; };
    if (!std::is_sorted(listed.begin(), listed.end(), byId))
        std::sort(listed.begin(), listed.end(), byId);
    merge(std::move(listed));
}

void ProcessTable::merge(std::vector<Known> listed) {
    auto old = known_.begin();
    for (Known &process : listed) {
        while (old != known_.end() && old->id < process.id)
            release((old++)->id);
        if (old == known_.end() || old->id != process.id)
            continue;
        if (old->inode == process.inode)
            process.isPending = old->isPending;
        else
            release(old->id);
        ++old;
    }
    for (; old != known_.end(); ++old)
        release(old->id);
    known_ = std::move(listed);
    hasPending_ = true;
}

void ProcessTable::open(QDeadlineTimer deadline) {
    for (auto process = known_.rbegin(); process != known_.rend(); ++process) {
        if (!process->isPending)
            continue;
        if (deadline.hasExpired())
            return;
        process->isPending = false;
        take(process->id);
    }
    hasPending_ = false;
}

void ProcessTable::take(ProcessId id) {
    const ProcessFolder process = folder(id);
    if (!process.isOurs())
        return;
    ++opened_;
    release(id);
    if (const auto executable = process.executable()) {
        young_.push_back({{id, *executable}, looksWhileYoung});
        place(process, *executable);
    }
}

void ProcessTable::place(const ProcessFolder &process, const QByteArray &executable) {
    const QString identifier = identify_(process);
    if (identifier.isEmpty())
        return;
    auto &members = members_[identifier];
    const auto before = [](const Member &member, ProcessId id) { return member.id < id; };
    members.insert(std::lower_bound(members.begin(), members.end(), process.id(), before),
                   {process.id(), executable});
}

void ProcessTable::release(ProcessId process) {
    for (auto entry = members_.begin(); entry != members_.end(); ++entry) {
        if (std::erase_if(entry->second, [process](const Member &member) { return member.id == process; })) {
            if (entry->second.empty())
                members_.erase(entry);
            return;
        }
    }
}

} // namespace pavonel
