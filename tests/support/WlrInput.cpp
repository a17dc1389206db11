#include "support/WlrInput.h"

#include <QByteArray>
#include <QTemporaryFile>

#include <cstring>
#include <string_view>

#include <gtest/gtest.h>
#include <virtual-keyboard-unstable-v1-client-protocol.h>
#include <wayland-client.h>
#include <wlr-virtual-pointer-unstable-v1-client-protocol.h>

namespace pavonel::test {

namespace {

constexpr std::uint32_t leftButton = 0x110;
constexpr char keymap[] = "xkb_keymap {\n"
                          "xkb_keycodes { include \"evdev\" };\n"
                          "xkb_types { include \"complete\" };\n"
                          "xkb_compat { include \"complete\" };\n"
                          "xkb_symbols { include \"pc+us\" };\n"
                          "};\n";

template <class Object>
Object *bound(wl_registry *registry, std::uint32_t name, const wl_interface &interface) {
    return static_cast<Object *>(wl_registry_bind(registry, name, &interface, 1));
}

void ignore(void *, wl_registry *, std::uint32_t) {}

} // namespace

WlrInput::WlrInput(const QString &socket) : display_(wl_display_connect(socket.toLocal8Bit().constData())) {
    if (!display_) {
        ADD_FAILURE() << "No compositor at " << socket.toStdString();
        return;
    }
    static const wl_registry_listener listener{find, ignore};
    wl_registry *registry = wl_display_get_registry(display_);
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip(display_);
    wl_registry_destroy(registry);
    if (seat_ && pointers_ && keyboards_)
        makeDevices();
    else
        ADD_FAILURE() << "The compositor at " << socket.toStdString() << " has no virtual input devices";
}

WlrInput::~WlrInput() {
    const auto drop = [](auto *object, auto destroy) {
        if (object)
            destroy(object);
    };
    drop(pointer_, zwlr_virtual_pointer_v1_destroy);
    drop(keyboard_, zwp_virtual_keyboard_v1_destroy);
    drop(pointers_, zwlr_virtual_pointer_manager_v1_destroy);
    drop(keyboards_, zwp_virtual_keyboard_manager_v1_destroy);
    drop(seat_, wl_seat_destroy);
    drop(display_, wl_display_disconnect);
}

void WlrInput::find(void *self, wl_registry *registry, std::uint32_t name, const char *interface,
                    std::uint32_t) {
    auto *input = static_cast<WlrInput *>(self);
    const auto is = [&](const wl_interface &wanted) { return std::string_view(interface) == wanted.name; };
    if (is(wl_seat_interface))
        input->seat_ = bound<wl_seat>(registry, name, wl_seat_interface);
    else if (is(zwlr_virtual_pointer_manager_v1_interface))
        input->pointers_ =
            bound<zwlr_virtual_pointer_manager_v1>(registry, name, zwlr_virtual_pointer_manager_v1_interface);
    else if (is(zwp_virtual_keyboard_manager_v1_interface))
        input->keyboards_ =
            bound<zwp_virtual_keyboard_manager_v1>(registry, name, zwp_virtual_keyboard_manager_v1_interface);
}

void WlrInput::makeDevices() {
    pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers_, seat_);
    keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards_, seat_);
    giveKeymap();
    flush();
}

void WlrInput::giveKeymap() {
    QTemporaryFile file;
    ASSERT_TRUE(file.open() && file.write(keymap, sizeof keymap) == sizeof keymap && file.flush());
    zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file.handle(), sizeof keymap);
}

/// Until the compositor has acted on all that it was told.
void WlrInput::flush() {
    if (wl_display_roundtrip(display_) < 0)
        ADD_FAILURE() << "The compositor is gone: " << std::strerror(wl_display_get_error(display_));
}

void WlrInput::press(Key key, std::uint32_t modifiers) {
    zwp_virtual_keyboard_v1_modifiers(keyboard_, modifiers, 0, 0, 0);
    zwp_virtual_keyboard_v1_key(keyboard_, ++time_, key, WL_KEYBOARD_KEY_STATE_PRESSED);
    zwp_virtual_keyboard_v1_key(keyboard_, ++time_, key, WL_KEYBOARD_KEY_STATE_RELEASED);
    zwp_virtual_keyboard_v1_modifiers(keyboard_, none, 0, 0, 0);
    flush();
}

void WlrInput::pointAt(QPoint point, QSize layout) {
    zwlr_virtual_pointer_v1_motion_absolute(
        pointer_, ++time_, static_cast<std::uint32_t>(point.x()), static_cast<std::uint32_t>(point.y()),
        static_cast<std::uint32_t>(layout.width()), static_cast<std::uint32_t>(layout.height()));
    zwlr_virtual_pointer_v1_frame(pointer_);
    flush();
}

void WlrInput::click() {
    zwlr_virtual_pointer_v1_button(pointer_, ++time_, leftButton, WL_POINTER_BUTTON_STATE_PRESSED);
    zwlr_virtual_pointer_v1_frame(pointer_);
    zwlr_virtual_pointer_v1_button(pointer_, ++time_, leftButton, WL_POINTER_BUTTON_STATE_RELEASED);
    zwlr_virtual_pointer_v1_frame(pointer_);
    flush();
}

} // namespace pavonel::test
