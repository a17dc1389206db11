#include "Platform/Platform.h"

namespace pavonel {

namespace {

/// Never destroyed: its destructors would run after main, when the application object and Qt's own statics,
/// which the services stand on, are gone. The system takes back what a process held.
Platform *installed = nullptr;

} // namespace

Platform &Platform::current() {
    Q_ASSERT(installed);
    return *installed;
}

void Platform::install(std::unique_ptr<Platform> platform) {
    installed = platform.release();
}

} // namespace pavonel
