// The kernel's Landlock, by which a plain process gives rights up for good. Where the kernel has none, all of
// this does nothing.
#pragma once

#include <cstdint>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace landlock {

// Of the kernel's interface, which is stable; headers of the oldest systems do not know all of it.
constexpr long create = 444, add = 445, restrict = 446;
constexpr unsigned askVersion = 1;
constexpr int pathBeneath = 1;

constexpr std::uint64_t execute = 1 << 0, readFile = 1 << 2, readFolder = 1 << 3;
constexpr std::uint64_t read = readFile | readFolder;
constexpr std::uint64_t onlyForFolders = ((1 << 14) - 1) & ~(execute | (1 << 1) | readFile);
constexpr std::uint64_t tcpBind = 1 << 0, tcpConnect = 1 << 1;

/// Denies everything with files, and these rights with the network, but for what is allowed before it is
/// enforced. Needs PR_SET_NO_NEW_PRIVS.
class Rules {
public:
    explicit Rules(std::uint64_t deniedOfNetwork) {
        const long version = syscall(create, nullptr, 0, askVersion);
        if (version < 1)
            return;
        // Linking between folders came with version 2, truncating with 3, the network with 4.
        const int known = version >= 3 ? 15 : version == 2 ? 14 : 13;
        everything_ = (std::uint64_t{1} << known) - 1;
        const std::uint64_t denied[] = {everything_, deniedOfNetwork};
        const std::size_t size = version >= 4 ? sizeof denied : sizeof denied[0];
        rules_ = static_cast<int>(syscall(create, denied, size, 0));
    }
    Rules(const Rules &) = delete;
    Rules &operator=(const Rules &) = delete;
    ~Rules() { close(rules_); }

    /// All that this kernel can deny of files.
    std::uint64_t everything() const { return everything_; }

    /// For a file, or for a folder and what is below it.
    void allow(const char *path, std::uint64_t rights) const {
        const int opened = open(path, O_PATH | O_CLOEXEC);
        if (opened < 0)
            return;
        const struct __attribute__((packed)) {
            std::uint64_t allowed;
            std::int32_t path;
        } rule{rights, opened};
        syscall(add, rules_, pathBeneath, &rule, 0);
        close(opened);
    }

    void enforce() const { syscall(restrict, rules_, 0); }

private:
    std::uint64_t everything_ = 0;
    int rules_ = -1;
};

} // namespace landlock
