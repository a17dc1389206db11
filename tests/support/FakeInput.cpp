#include "support/FakeInput.h"

#include <QByteArray>

#include <cstring>
#include <utility>

#include <fake-input-client-protocol.h>
#include <gtest/gtest.h>
#include <wayland-client.h>

namespace pavonel::test {

namespace {

constexpr std::uint32_t leftButton = 0x110;
constexpr std::uint32_t released = 0;
constexpr std::uint32_t pressed = 1;

/// The key of each, as the kernel counts them.
constexpr std::pair<VirtualInput::Modifier, std::uint32_t> modifierKeys[] = {
    {VirtualInput::control, 29}, {VirtualInput::alt, 56}, {VirtualInput::super, 125}};

void ignore(void *, wl_registry *, std::uint32_t) {}

} // namespace

FakeInput::FakeInput(const QString &socket) : display_(wl_display_connect(socket.toLocal8Bit().constData())) {
    if (!display_) {
        ADD_FAILURE() << "No compositor at " << socket.toStdString();
        return;
    }
    static const wl_registry_listener listener{find, ignore};
    wl_registry *registry = wl_display_get_registry(display_);
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip(display_);
    wl_registry_destroy(registry);
    if (!input_) {
        ADD_FAILURE() << "The compositor at " << socket.toStdString() << " takes no input from programs";
        return;
    }
    org_kde_kwin_fake_input_authenticate(input_, "a test", "to type and click");
    flush();
}

FakeInput::~FakeInput() {
    if (input_)
        org_kde_kwin_fake_input_destroy(input_);
    if (display_)
        wl_display_disconnect(display_);
}

void FakeInput::find(void *self, wl_registry *registry, std::uint32_t name, const char *interface,
                     std::uint32_t version) {
    const auto known = static_cast<std::uint32_t>(org_kde_kwin_fake_input_interface.version);
    if (std::strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0 && version >= known)
        static_cast<FakeInput *>(self)->input_ = static_cast<org_kde_kwin_fake_input *>(
            wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, known));
}

/// Until the compositor has acted on all that it was told.
void FakeInput::flush() {
    if (wl_display_roundtrip(display_) < 0)
        ADD_FAILURE() << "The compositor is gone: " << std::strerror(wl_display_get_error(display_));
}

void FakeInput::hold(std::uint32_t modifiers, std::uint32_t state) {
    for (const auto &[modifier, key] : modifierKeys) {
        if (modifiers & modifier)
            org_kde_kwin_fake_input_keyboard_key(input_, key, state);
    }
}

void FakeInput::press(Key key, std::uint32_t modifiers) {
    hold(modifiers, pressed);
    org_kde_kwin_fake_input_keyboard_key(input_, key, pressed);
    org_kde_kwin_fake_input_keyboard_key(input_, key, released);
    hold(modifiers, released);
    flush();
}

void FakeInput::pointAt(QPoint point) {
    org_kde_kwin_fake_input_pointer_motion_absolute(input_, wl_fixed_from_int(point.x()),
                                                    wl_fixed_from_int(point.y()));
    flush();
}

void FakeInput::click() {
    org_kde_kwin_fake_input_button(input_, leftButton, pressed);
    org_kde_kwin_fake_input_button(input_, leftButton, released);
    flush();
}

} // namespace pavonel::test
