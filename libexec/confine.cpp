// confine IMAGE FOLDER COMMAND [ARGUMENT]...: runs what reads a stranger's file with as few rights as a plain
// user can give away. It may read the image and the system's programs, write in the folder (none when that is
// empty), and has neither sockets nor other processes, as far as this kernel knows Landlock, seccomp and user
// namespaces; memory, time and the size of a file are limited everywhere.

#include "landlock.h"
#include "seccomp-filter.h"

#include <cstdio>
#include <initializer_list>

#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr rlim_t mebibyte = 1'048'576;
constexpr rlim_t mostMemory = 2048 * mebibyte;
constexpr rlim_t largestFile = 1024 * mebibyte;
constexpr rlim_t mostSeconds = 120;

void limit(__rlimit_resource_t resource, rlim_t most) {
    const rlimit value{most, most};
    setrlimit(resource, &value);
}

void keepFromOtherFiles(const char *image, const char *folder) {
    const landlock::Rules rules(landlock::tcpBind | landlock::tcpConnect);
    for (const char *system : {"/usr", "/bin", "/sbin", "/lib", "/lib64", "/nix/store", "/gnu/store"})
        rules.allow(system, landlock::read | landlock::execute);
    for (const char *file : {image, "/etc/ld.so.cache"})
        rules.allow(file, landlock::readFile);
    rules.allow("/dev/null", rules.everything() & ~landlock::onlyForFolders);
    if (*folder)
        rules.allow(folder, rules.everything());
    rules.enforce();
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
    SeccompFilter({}).enforce();
    execvp(argv[3], argv + 3);
    std::perror("confine");
    return 127;
}
