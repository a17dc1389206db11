#include "Platform/Qt/sharedWatcher.h"

namespace pavonel {

std::shared_ptr<QFileSystemWatcher> sharedWatcher() {
    static std::weak_ptr<QFileSystemWatcher> known;
    auto watcher = known.lock();
    if (!watcher)
        known = watcher = std::make_shared<QFileSystemWatcher>();
    return watcher;
}

} // namespace pavonel
