#pragma once

#include <pipewire/impl.h>
#include <pipewire/pipewire.h>

namespace pavonel {

#define PAVONEL_PIPEWIRE_FUNCTIONS(use)                                                                      \
    use(pw_context_connect);                                                                                 \
    use(pw_context_destroy);                                                                                 \
    use(pw_context_load_module);                                                                             \
    use(pw_context_new);                                                                                     \
    use(pw_core_disconnect);                                                                                 \
    use(pw_init);                                                                                            \
    use(pw_log_set_level);                                                                                   \
    use(pw_loop_destroy);                                                                                    \
    use(pw_loop_new);                                                                                        \
    use(pw_properties_new);                                                                                  \
    use(pw_proxy_add_object_listener);                                                                       \
    use(pw_proxy_destroy)

/// The functions of libpipewire that we call, under their own names.
struct PipeWireLibrary {
#define PAVONEL_DECLARE(name) decltype(&::name) name = nullptr
    PAVONEL_PIPEWIRE_FUNCTIONS(PAVONEL_DECLARE);
#undef PAVONEL_DECLARE

    /// Null on a machine without libpipewire.
    static const PipeWireLibrary *load();
};

} // namespace pavonel
