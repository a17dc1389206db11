#include "Platform/Linux/PipeWire/PipeWireLibrary.h"

#include "Platform/Linux/LateLibrary.h"

namespace pavonel {

const PipeWireLibrary *PipeWireLibrary::load() {
    static PipeWireLibrary functions;
    static const bool loaded = [] {
        LateLibrary library(QStringLiteral("pipewire-0.3"), 0);
#define PAVONEL_RESOLVE(name) library.resolve(functions.name, #name)
        PAVONEL_PIPEWIRE_FUNCTIONS(PAVONEL_RESOLVE);
#undef PAVONEL_RESOLVE
        if (library.isComplete()) {
            functions.pw_init(nullptr, nullptr);
            functions.pw_log_set_level(SPA_LOG_LEVEL_NONE); // it would warn of what we leave out on purpose
        }
        return library.isComplete();
    }();
    return loaded ? &functions : nullptr;
}

} // namespace pavonel
