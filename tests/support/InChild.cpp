#include "support/InChild.h"

#include <cstdio>
#include <string>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

constexpr uid_t nobody = 65534;

bool mayMountFromNowOn() {
    if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

int statusOf(pid_t child) {
    int status = -1;
    return child > 0 && ::waitpid(child, &status, 0) == child ? status : -1;
}

} // namespace

void inChild(const std::function<void()> &action) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        action();
        std::fflush(nullptr);
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    EXPECT_EQ(statusOf(child), 0) << "the child's failures are printed above";
}

void becomeNobody() {
    if (::geteuid() == 0) {
        EXPECT_EQ(::setresuid(nobody, nobody, nobody), 0);
    }
}

void giveToNobody(const char *path) {
    if (::geteuid() == 0) {
        EXPECT_EQ(::chown(path, nobody, nobody), 0) << path;
    }
}

bool mayMount() {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(mayMountFromNowOn() ? 0 : 1);
    return statusOf(child) == 0;
}

void mountEmpty(const char *folder, unsigned kilobytes) {
    const std::string options = "size=" + std::to_string(kilobytes) + "k";
    EXPECT_TRUE(mayMountFromNowOn());
    EXPECT_EQ(::mount("tmpfs", folder, "tmpfs", 0, options.c_str()), 0) << folder;
}

} // namespace pavonel::test
