#include "Platform/Platform.h"

namespace pavonel {

namespace {
std::unique_ptr<Platform> installed;
}

Platform &Platform::current() {
    Q_ASSERT(installed);
    return *installed;
}

void Platform::install(std::unique_ptr<Platform> platform) {
    installed = std::move(platform);
}

} // namespace pavonel
