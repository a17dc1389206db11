#include "Platform/Linux/Applications/ProcessTable.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace pavonel {

namespace {

/// In refreshes, one a second: slow starters are what they will be by then.
constexpr unsigned grownUp = 8;
/// Refreshes, and questions whether one is needed; some systems show a container another row of numbers than
/// its own.
constexpr int looksBetweenWalks = 600;
constexpr ProcessId longestLeap = 512; // trying more numbers costs more than reading the folder

/// A number is given a moment before its process shows.
constexpr ProcessId perhapsNotShown = 32;

ProcessId processIdOf(std::string_view name) {
    ProcessId id = 0;
    const char *const end = name.data() + name.size();
    return std::from_chars(name.data(), end, id).ptr == end ? id : 0;
}

} // namespace

ProcessTable::ProcessTable(const QByteArray &root, Identify identify, IsUrgent isUrgent)
    : root_(::open(root.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), identify_(std::move(identify)),
      isUrgent_(std::move(isUrgent)) {}

ProcessTable::~ProcessTable() {
    for (const int descriptor : {root_, loadAverage_}) {
        if (descriptor >= 0)
            ::close(descriptor);
    }
}

void ProcessTable::refresh(std::chrono::milliseconds budget) {
    if (root_ < 0)
        return;
    recheckRecent();
    dropEnded();
    const ProcessId last = lastBorn();
    if (mustWalk(last))
        walk(last);
    else
        meetNewborn(last);
    if (hasPending_)
        open(budget);
}

bool ProcessTable::mayHaveMore() {
    if (root_ < 0)
        return false;
    const bool isWalkDue = ++looksSinceWalk_ >= looksBetweenWalks;
    if (isWalkDue || hasPending_ || isOutdated_ || !recent_.empty())
        return true;
    const ProcessId last = lastBorn();
    return last != newest_ || last == 0;
}

void ProcessTable::searchUrgent() {
    for (const Known &listed : list()) {
        const ProcessFolder process = folder(listed.id);
        const auto executable = process.isOurs() ? process.executable() : std::nullopt;
        if (executable && isUrgent_(*executable))
            take(listed.id);
    }
}

void ProcessTable::reconsider() {
    isOutdated_ = true;
    for (Known &process : known_)
        process.isPending = true;
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
void ProcessTable::dropEnded() {
    std::vector<ProcessId> ended;
    for (auto &[identifier, members] : members_) {
        const auto alive = std::find_if(members.begin(), members.end(), [this](const Member &member) {
            return folder(member.id).executable() == member.executable;
        });
        for (auto gone = members.begin(); gone != alive; ++gone)
            ended.push_back(gone->id);
    }
    for (const ProcessId id : ended)
        take(id); // it may run another program now
}

/// Between its birth and the start of its program a process looks like its parent, and launchers turn into
/// what they launch. So it is looked at again after one, two, four and eight refreshes.
void ProcessTable::recheckRecent() {
    for (auto &[id, young] : recent_) {
        if (!std::has_single_bit(++young.age))
            continue;
        const ProcessFolder process = folder(id);
        const auto executable = process.executable();
        if (!executable || (!young.executable && process.isThread())) {
            young.age = grownUp;
        } else if (executable != young.executable) {
            young.executable = executable;
            release(id);
            place(process, *executable);
        }
    }
    std::erase_if(recent_, [](const auto &entry) { return entry.second.age >= grownUp; });
}

/// The number that the kernel gave last, to a process or a thread; 0 when it does not tell.
ProcessId ProcessTable::lastBorn() {
    if (loadAverage_ < 0)
        loadAverage_ = ::openat(root_, "loadavg", O_RDONLY | O_CLOEXEC);
    std::array<char, 128> text{};
    const auto length = ::pread(loadAverage_, text.data(), text.size(), 0);
    std::string_view line(text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    line = line.substr(0, line.find('\n'));
    return processIdOf(line.substr(line.rfind(' ') + 1));
}

bool ProcessTable::mustWalk(ProcessId last) const {
    const bool inRow = last > 0 && last >= newest_ && last - met_ <= longestLeap;
    return !inRow || isOutdated_ || looksSinceWalk_ >= looksBetweenWalks;
}

void ProcessTable::walk(ProcessId last) {
    merge(list());
    newest_ = last;
    met_ = std::max(last - perhapsNotShown, 0);
    looksSinceWalk_ = 0;
    isOutdated_ = false;
    hasPending_ = true;
    ++walks_;
}

std::vector<ProcessTable::Known> ProcessTable::list() const {
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
    return listed;
}

/// Leaves for opening what was not there before.
void ProcessTable::merge(std::vector<Known> listed) {
    auto old = known_.begin();
    for (Known &process : listed) {
        while (old != known_.end() && old->id < process.id)
            ++old;
        if (old != known_.end() && old->id == process.id && old->inode == process.inode)
            process.isPending = old->isPending;
    }
    known_ = std::move(listed);
    const auto isGone = [this](const Member &member) {
        return !std::binary_search(known_.begin(), known_.end(), Known{member.id, 0, false},
                                   [](const Known &a, const Known &b) { return a.id < b.id; });
    };
    for (auto &[identifier, members] : members_)
        std::erase_if(members, isGone);
    std::erase_if(members_, [](const auto &entry) { return entry.second.empty(); });
}

void ProcessTable::meetNewborn(ProcessId last) {
    ++looksSinceWalk_;
    for (ProcessId id = met_ + 1; id <= last; ++id) {
        if (!recent_.contains(id))
            meet(id);
    }
    met_ = std::exchange(newest_, last);
}

void ProcessTable::meet(ProcessId id) {
    const ProcessFolder process = folder(id);
    const auto executable = process.isOurs() ? process.executable() : std::nullopt;
    if (!executable)
        return;
    if (!isUrgent_(*executable))
        recent_.insert_or_assign(id, RecentProcess{});
    else if (!process.isThread())
        take(id);
}

void ProcessTable::open(std::chrono::milliseconds budget) {
    const QDeadlineTimer deadline(budget, Qt::PreciseTimer);
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
    release(id);
    const ProcessFolder process = folder(id);
    const auto executable = process.isOurs() ? process.executable() : std::nullopt;
    if (!executable)
        return;
    if (id > newest_ - longestLeap)
        recent_.insert_or_assign(id, RecentProcess{*executable});
    place(process, *executable);
}

void ProcessTable::place(const ProcessFolder &process, const QByteArray &executable) {
    ++opened_;
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
