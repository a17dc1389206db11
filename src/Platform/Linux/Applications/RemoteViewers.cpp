#include "Platform/Linux/Applications/RemoteViewers.h"

#include <algorithm>

namespace pavonel {

namespace {

/// Whether a table of TCP connections has an established one with one of these inodes.
bool hasConnection(const QByteArray &table, const std::vector<std::uint64_t> &inodes) {
    constexpr qsizetype stateColumn = 3;
    constexpr qsizetype inodeColumn = 9;
    for (const QByteArray &line : table.split('\n')) {
        const auto columns = line.simplified().split(' ');
        if (columns.size() <= inodeColumn || columns[stateColumn] != "01")
            continue;
        if (std::find(inodes.begin(), inodes.end(), columns[inodeColumn].toULongLong()) != inodes.end())
            return true;
    }
    return false;
}

bool isViewed(const ProcessFolder &server) {
    constexpr qsizetype longest = 1 << 20; // bytes; some thousand connections
    const auto inodes = server.sockets();
    return hasConnection(server.read("net/tcp", longest), inodes) ||
           hasConnection(server.read("net/tcp6", longest), inodes);
}

} // namespace

bool RemoteViewers::anyAt(const ProcessFolder &server) {
    constexpr std::chrono::seconds lifetime{2};
    const auto now = Clock::now();
    std::erase_if(answers_, [now](const auto &entry) { return entry.second.until < now; });
    const auto [answer, isNew] = answers_.try_emplace(server.id(), Answer{false, now + lifetime});
    if (isNew)
        answer->second.viewed = isViewed(server);
    return answer->second.viewed;
}

} // namespace pavonel
