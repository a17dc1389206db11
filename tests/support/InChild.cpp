#include "support/InChild.h"

#include <string>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pavonel::test {

ChildEnd inChild(const std::function<int()> &action) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(action());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return {};
    if (WIFSIGNALED(status))
        return {.signal = WTERMSIG(status)};
    return {.status = WEXITSTATUS(status)};
}

bool ownFileSystemView() {
    if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool mountEmpty(const char *folder, unsigned kilobytes) {
    const std::string options = kilobytes > 0 ? "size=" + std::to_string(kilobytes) + "k" : std::string();
    const unsigned long flags = kilobytes > 0 ? 0 : MS_RDONLY;
    return ::mount("tmpfs", folder, "tmpfs", flags, options.c_str()) == 0;
}

} // namespace pavonel::test
