#pragma once

#include <functional>

namespace pavonel::test {

/// How a forked child ended.
struct ChildEnd {
    int status = -1; ///< What `inChild` got from its action, or -1 when a signal ended the child.
    int signal = 0;
};

/// Runs `action` in a forked copy of this process, which can change what holds for a whole process: its user,
/// its limits, its view of the file system. The action must not use the event loop. Its result, 0 to 255,
/// comes back.
ChildEnd inChild(const std::function<int()> &action);

/// For a child: gives it a file system view of its own, in which it may mount, as root or in a user
/// namespace. False where the machine forbids both.
bool ownFileSystemView();

/// For a child: puts an empty file system of the given size over a folder; 0 for one that cannot be written.
bool mountEmpty(const char *folder, unsigned kilobytes);

} // namespace pavonel::test
