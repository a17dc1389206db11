#pragma once

#include <functional>

namespace pavonel::test {

/// Runs `action` in a forked copy of this process, which may change what holds for a whole process: its user,
/// its limits, its view of the file system. The action must not use the event loop. What fails in it fails
/// the test.
void inChild(const std::function<void()> &action);

/// For a child: becomes a user whom file modes bind, if it is root.
void becomeNobody();
/// Hands a file or folder to the user that `becomeNobody` makes.
void giveToNobody(const char *path);

/// Whether `mountEmpty` works here: as root, or where users may have name spaces of their own.
bool mayMount();
/// For a child: puts an empty file system of the given size over a folder, which this process alone sees.
void mountEmpty(const char *folder, unsigned kilobytes);

} // namespace pavonel::test
