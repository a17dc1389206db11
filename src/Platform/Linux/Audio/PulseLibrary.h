#pragma once

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/operation.h>
#include <pulse/proplist.h>
#include <pulse/subscribe.h>

namespace pavonel {

#define PAVONEL_PULSE_FUNCTIONS(use)                                                                         \
    use(pa_context_connect);                                                                                 \
    use(pa_context_disconnect);                                                                              \
    use(pa_context_get_sink_info_by_name);                                                                   \
    use(pa_context_get_sink_input_info_list);                                                                \
    use(pa_context_get_source_info_by_name);                                                                 \
    use(pa_context_get_source_output_info_list);                                                             \
    use(pa_context_get_state);                                                                               \
    use(pa_context_new);                                                                                     \
    use(pa_context_set_state_callback);                                                                      \
    use(pa_context_set_subscribe_callback);                                                                  \
    use(pa_context_subscribe);                                                                               \
    use(pa_context_unref);                                                                                   \
    use(pa_operation_unref);                                                                                 \
    use(pa_proplist_gets)

/// The functions of libpulse that we call, under their own names.
struct PulseLibrary {
#define PAVONEL_DECLARE(name) decltype(&::name) name = nullptr
    PAVONEL_PULSE_FUNCTIONS(PAVONEL_DECLARE);
#undef PAVONEL_DECLARE

    /// Null on a machine without libpulse.
    static const PulseLibrary *load();
};

} // namespace pavonel
