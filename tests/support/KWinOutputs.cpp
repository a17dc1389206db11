#include "support/KWinOutputs.h"

#include <optional>
#include <string_view>

#include <gtest/gtest.h>
#include <kde-output-management-v2-client-protocol.h>
#include <wayland-client.h>

namespace pavonel::test {

namespace {

void ignore(void *, wl_registry *, std::uint32_t) {}

} // namespace

KWinOutputs::KWinOutputs(const QString &socket)
    : display_(wl_display_connect(socket.toLocal8Bit().constData())) {
    if (!display_) {
        ADD_FAILURE() << "No compositor at " << socket.toStdString();
        return;
    }
    static const wl_registry_listener listener{find, ignore};
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &listener, this);
    wl_display_roundtrip(display_);
    EXPECT_NE(management_, nullptr) << "The outputs of this compositor cannot be changed";
}

KWinOutputs::~KWinOutputs() {
    for (wl_proxy *each : modes_)
        wl_proxy_destroy(each);
    for (kde_output_device_v2 *each : outputs_)
        kde_output_device_v2_destroy(each);
    if (management_)
        kde_output_management_v2_destroy(management_);
    if (registry_)
        wl_registry_destroy(registry_);
    if (display_)
        wl_display_disconnect(display_);
}

void KWinOutputs::find(void *self, wl_registry *registry, std::uint32_t name, const char *interface,
                       std::uint32_t) {
    auto &ours = *static_cast<KWinOutputs *>(self);
    const std::string_view offered(interface);
    if (offered == kde_output_management_v2_interface.name)
        ours.management_ = static_cast<kde_output_management_v2 *>(
            wl_registry_bind(registry, name, &kde_output_management_v2_interface, 1));
    else if (offered == kde_output_device_v2_interface.name)
        ours.watch(static_cast<kde_output_device_v2 *>(
            wl_registry_bind(registry, name, &kde_output_device_v2_interface, 1)));
}

/// Of what an output tells, only its modes are ours: objects that KWin makes for us.
void KWinOutputs::watch(kde_output_device_v2 *output) {
    const auto take = [](const void *, void *device, std::uint32_t, const wl_message *event,
                         wl_argument *arguments) {
        auto &ours = *static_cast<KWinOutputs *>(wl_proxy_get_user_data(static_cast<wl_proxy *>(device)));
        if (event->signature == std::string_view("n"))
            ours.modes_.push_back(reinterpret_cast<wl_proxy *>(arguments->o));
        return 0;
    };
    wl_proxy_add_dispatcher(reinterpret_cast<wl_proxy *>(output), take, nullptr, this);
    outputs_.push_back(output);
}

void KWinOutputs::setEnabled(std::size_t output, bool enabled) {
    apply(output,
          [enabled](auto *all, auto *device) { kde_output_configuration_v2_enable(all, device, enabled); });
}

void KWinOutputs::setScale(std::size_t output, double scale) {
    apply(output, [scale](auto *all, auto *device) {
        kde_output_configuration_v2_scale(all, device, wl_fixed_from_double(scale));
    });
}

/// Waits until KWin has done so.
void KWinOutputs::apply(std::size_t output, const Change &change) {
    using Answer = std::optional<bool>;
    static const kde_output_configuration_v2_listener listener{
        [](void *answer, auto *) { *static_cast<Answer *>(answer) = true; },
        [](void *answer, auto *) { *static_cast<Answer *>(answer) = false; }};
    Answer answer;
    kde_output_configuration_v2 *all = kde_output_management_v2_create_configuration(management_);
    kde_output_configuration_v2_add_listener(all, &listener, &answer);
    change(all, outputs_.at(output));
    kde_output_configuration_v2_apply(all);
    while (!answer && wl_display_dispatch(display_) >= 0) {
    }
    EXPECT_TRUE(answer.value_or(false)) << "KWin refused to change output " << output;
    kde_output_configuration_v2_destroy(all);
    wl_display_flush(display_);
}

} // namespace pavonel::test
