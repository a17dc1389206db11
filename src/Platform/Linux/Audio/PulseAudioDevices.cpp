#include "Platform/Linux/Audio/PulseAudioDevices.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

#include <pulse/def.h>

namespace pavonel {

namespace {

/// Where the server's socket is as a rule: the user's, and one for all users.
QStringList usualSockets() {
    const QString folder = qEnvironmentVariableIsSet("PULSE_RUNTIME_PATH")
                               ? qEnvironmentVariable("PULSE_RUNTIME_PATH")
                               : qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/pulse");
    return {folder + QStringLiteral("/native"), QStringLiteral("/run/pulse/native")};
}

/// A server named by a variable may be anywhere. An attempt to connect reads several files and fails late.
bool mayBeReachable() {
    const QStringList sockets = usualSockets();
    return qEnvironmentVariableIsSet("PULSE_SERVER") ||
           std::any_of(sockets.begin(), sockets.end(),
                       [](const QString &path) { return QFile::exists(path); });
}

} // namespace

PulseAudioDevices::PulseAudioDevices() : changes_(usualSockets()) {}

PulseAudioDevices::~PulseAudioDevices() {
    drop();
}

QString PulseAudioDevices::limitation() const {
    if (!failed_)
        return {};
    return pulse_
               ? QStringLiteral("No sound server answers, so calls and playing sound go unnoticed.")
               : QStringLiteral("The library libpulse is missing, so calls and playing sound go unnoticed.");
}

bool PulseAudioDevices::ask(Device &device) {
    device.asked = true;
    const bool isNew = !std::exchange(device.wanted, true);
    if (!context_)
        connectIfDue();
    else if (isNew && isReady())
        subscribe();
    if (device.stale)
        look(device);
    return device.running;
}

void PulseAudioDevices::connectIfDue() {
    const auto now = Clock::now();
    if (changes_.any() && !std::exchange(isThere_, mayBeReachable()) && isThere_) {
        pause_ = shortestPause;
        nextAttempt_ = now;
    }
    if (now < nextAttempt_)
        return;
    // A client's configuration can name a server elsewhere, so one is looked for even without a socket.
    nextAttempt_ = now + (isThere_ ? pause_ : pauseWithoutSocket);
    pause_ = std::min<Clock::duration>(pause_ * 2, longestPause);
    pulse_ = PulseLibrary::load();
    context_ = pulse_ ? pulse_->pa_context_new(loop_.api(), "Pavonel") : nullptr;
    if (!context_) {
        failed_ = true;
        return;
    }
    pulse_->pa_context_set_state_callback(
        context_, [](pa_context *, void *self) { static_cast<PulseAudioDevices *>(self)->stateChanged(); },
        this);
    // A sound server that the user ended shall not come back because of us.
    if (pulse_->pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        failed_ = true;
        drop();
    }
}

void PulseAudioDevices::stateChanged() {
    if (!context_)
        return; // gave up within the attempt to connect
    switch (pulse_->pa_context_get_state(context_)) {
    case PA_CONTEXT_READY:
        failed_ = false;
        pause_ = shortestPause;
        subscribe();
        look(input_);
        look(output_);
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        failed_ = true;
        drop();
        break;
    default:
        break;
    }
}

bool PulseAudioDevices::isReady() const {
    return context_ && pulse_->pa_context_get_state(context_) == PA_CONTEXT_READY;
}

/// Forgets the server; what was under way never reports back.
void PulseAudioDevices::drop() {
    for (Device *device : {&input_, &output_}) {
        device->running = false;
        device->stale = true;
        device->isQueried = false;
    }
    pa_context *const context = std::exchange(context_, nullptr);
    if (!context)
        return;
    pulse_->pa_context_set_state_callback(context, nullptr, nullptr);
    pulse_->pa_context_set_subscribe_callback(context, nullptr, nullptr);
    pulse_->pa_context_disconnect(context);
    pulse_->pa_context_unref(context);
}

void PulseAudioDevices::subscribe() {
    unsigned facilities = PA_SUBSCRIPTION_MASK_SERVER; // which devices are the default ones
    if (input_.wanted)
        facilities |= PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SOURCE_OUTPUT;
    if (output_.wanted)
        facilities |= PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SINK_INPUT;
    pulse_->pa_context_set_subscribe_callback(
        context_,
        [](pa_context *, pa_subscription_event_type_t event, std::uint32_t, void *self) {
            static_cast<PulseAudioDevices *>(self)->changed(event);
        },
        this);
    pa_operation *const operation = pulse_->pa_context_subscribe(
        context_, static_cast<pa_subscription_mask_t>(facilities), nullptr, nullptr);
    if (operation)
        pulse_->pa_operation_unref(operation);
}

void PulseAudioDevices::changed(pa_subscription_event_type_t event) {
    switch (event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK) {
    case PA_SUBSCRIPTION_EVENT_SOURCE:
    case PA_SUBSCRIPTION_EVENT_SOURCE_OUTPUT:
        changed(input_);
        break;
    case PA_SUBSCRIPTION_EVENT_SINK:
    case PA_SUBSCRIPTION_EVENT_SINK_INPUT:
        changed(output_);
        break;
    default:
        changed(input_);
        changed(output_);
    }
}

void PulseAudioDevices::changed(Device &device) {
    device.stale = true;
    look(device);
}

void PulseAudioDevices::look(Device &device) {
    if (!device.asked || device.isQueried || !isReady())
        return;
    device.asked = false;
    device.stale = false;
    device.isQueried = true;
    device.active.reset();
    device.inUse.clear();
    if (&device == &input_)
        requestInput();
    else
        requestOutput();
}

// The server answers in order, so the end of the list of streams is the end of the look.

void PulseAudioDevices::requestInput() {
    send(input_, pulse_->pa_context_get_source_info_by_name(context_, "@DEFAULT_SOURCE@",
                                                            onDevice<pa_source_info>, &input_));
    send(input_,
         pulse_->pa_context_get_source_output_info_list(context_, onStream<pa_source_output_info>, &input_));
}

void PulseAudioDevices::requestOutput() {
    send(output_, pulse_->pa_context_get_sink_info_by_name(context_, "@DEFAULT_SINK@", onDevice<pa_sink_info>,
                                                           &output_));
    send(output_,
         pulse_->pa_context_get_sink_input_info_list(context_, onStream<pa_sink_input_info>, &output_));
}

void PulseAudioDevices::send(Device &device, pa_operation *operation) {
    if (operation)
        pulse_->pa_operation_unref(operation);
    else
        device.isQueried = false;
}

template <class Info> void PulseAudioDevices::onDevice(pa_context *, const Info *info, int, void *data) {
    if (!info)
        return;
    bool running = false;
    if constexpr (std::is_same_v<Info, pa_source_info>)
        running = info->state == PA_SOURCE_RUNNING && info->monitor_of_sink == PA_INVALID_INDEX;
    else
        running = info->state == PA_SINK_RUNNING;
    if (running)
        static_cast<Device *>(data)->active = info->index;
}

template <class Info> void PulseAudioDevices::onStream(pa_context *, const Info *info, int end, void *data) {
    auto &device = *static_cast<Device *>(data);
    if (end || !info) {
        device.owner.finishQuery(device);
        return;
    }
    if (info->corked)
        return;
    if constexpr (std::is_same_v<Info, pa_source_output_info>) {
        if (!device.owner.isLevelMeter(*info))
            device.inUse.insert(info->source);
    } else if (!device.owner.isOurs(*info)) {
        device.inUse.insert(info->sink);
    }
}

/// Mixers keep such a stream open on the microphone for as long as they run; nobody is recording.
bool PulseAudioDevices::isLevelMeter(const pa_source_output_info &stream) const {
    if (stream.resample_method && std::strcmp(stream.resample_method, "peaks") == 0)
        return true;
    const char *const peaks = pulse_->pa_proplist_gets(stream.proplist, "resample.peaks"); // PipeWire's word
    return peaks && std::strcmp(peaks, "true") == 0;
}

/// The sound that begins or ends a break is nothing to wait for.
bool PulseAudioDevices::isOurs(const pa_sink_input_info &stream) const {
    const char *const id = pulse_->pa_proplist_gets(stream.proplist, PA_PROP_APPLICATION_ID);
    return id && std::strcmp(id, "org.pavonel.Pavonel") == 0;
}

void PulseAudioDevices::finishQuery(Device &device) {
    device.isQueried = false;
    device.running = device.active && device.inUse.contains(*device.active);
    if (device.stale)
        look(device);
}

} // namespace pavonel
