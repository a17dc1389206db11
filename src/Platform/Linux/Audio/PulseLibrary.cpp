#include "Platform/Linux/Audio/PulseLibrary.h"

#include "Platform/Linux/LateLibrary.h"

namespace pavonel {

const PulseLibrary *PulseLibrary::load() {
    static PulseLibrary functions;
    static const bool loaded = [] {
        LateLibrary library(QStringLiteral("pulse"), 0);
#define PAVONEL_RESOLVE(name) library.resolve(functions.name, #name)
        PAVONEL_PULSE_FUNCTIONS(PAVONEL_RESOLVE);
#undef PAVONEL_RESOLVE
        return library.isComplete();
    }();
    return loaded ? &functions : nullptr;
}

} // namespace pavonel
