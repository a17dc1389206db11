#pragma once

#include <QFileSystemWatcher>

#include <memory>

namespace pavonel {

/// Of files and folders, one for all who hold it: each more would be one more thing that every turn of the
/// main loop looks at. Who wants to know of a path adds it, and nobody takes any away. Main thread only.
std::shared_ptr<QFileSystemWatcher> sharedWatcher();

} // namespace pavonel
