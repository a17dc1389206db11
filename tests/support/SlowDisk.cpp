#include "support/SlowDisk.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include <sys/syscall.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

enum class Behaviour { well, held, broken };

std::mutex guard;
std::condition_variable changed;
Behaviour behaviour = Behaviour::well;
bool hasWriterCome = false;

void change(Behaviour to) {
    const std::scoped_lock lock(guard);
    behaviour = to;
    if (to != Behaviour::well)
        hasWriterCome = false;
    changed.notify_all();
}

bool fails() {
    std::unique_lock lock(guard);
    hasWriterCome = true;
    changed.notify_all();
    const bool isBroken = behaviour == Behaviour::broken;
    changed.wait(lock, [] { return behaviour != Behaviour::held; });
    return isBroken;
}

} // namespace

SlowDisk::SlowDisk() {
    release();
}

SlowDisk::~SlowDisk() {
    release();
}

void SlowDisk::hold() {
    change(Behaviour::held);
}

void SlowDisk::breakDown() {
    change(Behaviour::broken);
}

void SlowDisk::release() {
    change(Behaviour::well);
}

bool SlowDisk::waitForWriter() {
    std::unique_lock lock(guard);
    return changed.wait_for(lock, std::chrono::seconds(30), [] { return hasWriterCome; });
}

} // namespace pavonel::test

namespace {

int syncUnlessBroken(long call, int descriptor) {
    if (pavonel::test::fails()) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(::syscall(call, descriptor));
}

} // namespace

// These take the place of the C library's in the program that they are linked into.

extern "C" int fsync(int descriptor) {
    return syncUnlessBroken(SYS_fsync, descriptor);
}

extern "C" int fdatasync(int descriptor) {
    return syncUnlessBroken(SYS_fdatasync, descriptor);
}
