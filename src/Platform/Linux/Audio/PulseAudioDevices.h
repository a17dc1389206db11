#pragma once

#include "Platform/AudioDevices.h"
#include "Platform/Linux/Audio/PulseLibrary.h"
#include "Platform/Linux/Audio/QtPulseLoop.h"
#include "Platform/Qt/FolderChanges.h"

#include <chrono>
#include <optional>
#include <set>

namespace pavonel {

/// The sound server's answers: PulseAudio, or PipeWire in its place. It is told of changes, so a question
/// only reads memory. The server is looked for again, with growing pauses, as long as somebody asks.
class PulseAudioDevices final : public AudioDevices {
public:
    PulseAudioDevices();
    ~PulseAudioDevices() override;

    bool isDefaultInputRunning() override { return ask(input_); }
    bool isDefaultOutputRunning() override { return ask(output_); }
    QString limitation() const override;

private:
    using Clock = std::chrono::steady_clock;

    /// One of the two default devices. It is looked at again only after the server reported a change and
    /// after somebody asked: whoever switched the question off pays nothing for it.
    struct Device {
        PulseAudioDevices &owner;
        bool running = false;
        bool wanted = false; ///< Asked at least once, hence subscribed.
        bool asked = false;  ///< Asked since the last look.
        bool stale = true;   ///< Changed since the last look.
        bool isQueried = false;
        std::optional<std::uint32_t> active{}; ///< This look: the default device, when it is running.
        std::set<std::uint32_t> inUse{};       ///< This look: devices with a stream that counts.
    };

    bool ask(Device &device);
    void look(Device &device);
    void requestInput();
    void requestOutput();
    void finishQuery(Device &device);
    void connectIfDue();
    void stateChanged();
    void subscribe();
    void changed(pa_subscription_event_type_t event);
    void changed(Device &device);
    void drop();
    bool isReady() const;
    void send(Device &device, pa_operation *operation);

    template <class Info> static void onDevice(pa_context *, const Info *info, int end, void *device);
    template <class Info> static void onStream(pa_context *, const Info *info, int end, void *device);
    bool isLevelMeter(const pa_source_output_info &stream) const;
    bool isOurs(const pa_sink_input_info &stream) const;

    const PulseLibrary *pulse_ = nullptr; ///< Loaded with the first question.
    QtPulseLoop loop_;
    pa_context *context_ = nullptr;
    Device input_{*this};
    Device output_{*this};
    bool failed_ = false;
    Clock::duration pause_ = shortestPause;
    Clock::time_point nextAttempt_;
    FolderChanges changes_; ///< Around the server's socket.
    bool isThere_ = false;  ///< The socket.

    static constexpr std::chrono::seconds shortestPause{1};
    static constexpr std::chrono::seconds longestPause{30};
    static constexpr std::chrono::minutes pauseWithoutSocket{10};
};

} // namespace pavonel
