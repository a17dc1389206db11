// confine IMAGE FOLDER COMMAND [ARGUMENT]...: runs what reads a stranger's file with as few rights as a plain
// user can give away. It may read the image and the system's programs, write in the folder (none when that is
// empty), and has no network, as far as this kernel knows Landlock and user namespaces; memory, time and the
// size of a file are limited everywhere.

#include <cstdint>
#include <cstdio>
#include <initializer_list>

#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr rlim_t mebibyte = 1'048'576;
constexpr rlim_t mostMemory = 2048 * mebibyte;
constexpr rlim_t largestFile = 1024 * mebibyte;
constexpr rlim_t mostSeconds = 120;

// Of the kernel's interface, which is stable; headers of the oldest systems do not know all of it.
namespace landlock {

constexpr long create = 444, add = 445, restrict = 446;
constexpr unsigned askVersion = 1;
constexpr int pathBeneath = 1;

constexpr std::uint64_t execute = 1 << 0, readFile = 1 << 2, readFolder = 1 << 3;
constexpr std::uint64_t read = execute | readFile | readFolder;
constexpr std::uint64_t onlyForFolders = ((1 << 14) - 1) & ~(execute | (1 << 1) | readFile);
constexpr std::uint64_t tcp = 3; // to bind and to connect

struct Ruleset {
    std::uint64_t files, network;
};
struct __attribute__((packed)) Rule {
    std::uint64_t allowed;
    std::int32_t path;
};

/// What the kernel can deny of files: linking between folders came with version 2, truncating with 3.
constexpr std::uint64_t everything(long version) {
    const int known = version >= 3 ? 15 : version == 2 ? 14 : 13;
    return (std::uint64_t{1} << known) - 1;
}

} // namespace landlock

void limit(__rlimit_resource_t resource, rlim_t most) {
    const rlimit value{most, most};
    setrlimit(resource, &value);
}

void allow(int ruleset, const char *path, std::uint64_t rights) {
    const int opened = open(path, O_PATH | O_CLOEXEC);
    if (opened < 0)
        return;
    const landlock::Rule rule{rights, opened};
    syscall(landlock::add, ruleset, landlock::pathBeneath, &rule, 0);
    close(opened);
}

void keepFromOtherFiles(const char *image, const char *folder) {
    const long version = syscall(landlock::create, nullptr, 0, landlock::askVersion);
    if (version < 1)
        return;
    const landlock::Ruleset denied{landlock::everything(version), landlock::tcp};
    const std::size_t known = version >= 4 ? sizeof denied : sizeof denied.files;
    const int ruleset = static_cast<int>(syscall(landlock::create, &denied, known, 0));
    for (const char *system : {"/usr", "/bin", "/sbin", "/lib", "/lib64", "/nix/store", "/gnu/store"})
        allow(ruleset, system, landlock::read);
    for (const char *file : {image, "/etc/ld.so.cache"})
        allow(ruleset, file, landlock::readFile);
    allow(ruleset, "/dev/null", denied.files & ~landlock::onlyForFolders);
    if (*folder)
        allow(ruleset, folder, denied.files);
    syscall(landlock::restrict, ruleset, 0);
    close(ruleset);
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 4) {
        std::fputs("usage: confine IMAGE FOLDER COMMAND [ARGUMENT]...\n", stderr);
        return 64;
    }
    limit(RLIMIT_AS, mostMemory);
    limit(RLIMIT_FSIZE, largestFile);
    limit(RLIMIT_CPU, mostSeconds);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWIPC); // a network with nobody on it
    keepFromOtherFiles(argv[1], argv[2]);
    execvp(argv[3], argv + 3);
    std::perror("confine");
    return 127;
}
