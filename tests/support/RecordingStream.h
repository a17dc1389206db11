#pragma once

#include "support/waitUntil.h"

#include <gtest/gtest.h>
#include <pulse/pulseaudio.h>

namespace pavonel::test {

/// A program that has a stream from the default source, in a thread of its own.
class RecordingStream {
public:
    enum class Kind {
        levelMeter, ///< As a mixer shows it.
        onHold,     ///< Open, but nothing flows.
    };

    explicit RecordingStream(Kind kind) {
        pa_threaded_mainloop_start(loop_);
        locked([&] {
            context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "recorder");
            pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
        });
        const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, 25, 1};
        const auto flags = static_cast<pa_stream_flags_t>(
            PA_STREAM_ADJUST_LATENCY |
            (kind == Kind::levelMeter ? PA_STREAM_PEAK_DETECT : PA_STREAM_START_CORKED));
        until([&] { return pa_context_get_state(context_) == PA_CONTEXT_READY; });
        locked([&] {
            stream_ = pa_stream_new(context_, "stream", &spec, nullptr);
            pa_stream_connect_record(stream_, nullptr, nullptr, flags);
        });
        until([&] { return pa_stream_get_state(stream_) == PA_STREAM_READY; });
    }

    ~RecordingStream() {
        locked([&] {
            pa_stream_disconnect(stream_);
            pa_stream_unref(stream_);
            pa_context_disconnect(context_);
            pa_context_unref(context_);
        });
        pa_threaded_mainloop_stop(loop_);
        pa_threaded_mainloop_free(loop_);
    }

private:
    template <class Action> void locked(Action action) {
        pa_threaded_mainloop_lock(loop_);
        action();
        pa_threaded_mainloop_unlock(loop_);
    }

    template <class Condition> void until(Condition condition) {
        EXPECT_TRUE(waitUntil([&] {
            bool holds = false;
            locked([&] { holds = condition(); });
            return holds;
        }));
    }

    pa_threaded_mainloop *loop_ = pa_threaded_mainloop_new();
    pa_context *context_ = nullptr;
    pa_stream *stream_ = nullptr;
};

} // namespace pavonel::test
