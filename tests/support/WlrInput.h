#pragma once

#include "support/VirtualInput.h"

#include <QPoint>
#include <QSize>
#include <QString>

struct wl_display;
struct wl_registry;
struct wl_seat;
struct zwlr_virtual_pointer_manager_v1;
struct zwlr_virtual_pointer_v1;
struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

namespace pavonel::test {

/// On a compositor that lets programs make input devices. They are there until it goes.
class WlrInput final : public VirtualInput {
public:
    /// Of the compositor at this socket; one that has none of them fails the test.
    explicit WlrInput(const QString &socket);
    ~WlrInput() override;

    void press(Key key, std::uint32_t modifiers = none) override;
    void click() override;

    /// On a layout of this size, whose corner is at 0,0.
    void pointAt(QPoint point, QSize layout);

private:
    static void find(void *self, wl_registry *registry, std::uint32_t name, const char *interface,
                     std::uint32_t version);
    void makeDevices();
    void giveKeymap();
    void flush();

    wl_display *display_;
    wl_seat *seat_ = nullptr;
    zwlr_virtual_pointer_manager_v1 *pointers_ = nullptr;
    zwp_virtual_keyboard_manager_v1 *keyboards_ = nullptr;
    zwlr_virtual_pointer_v1 *pointer_ = nullptr;
    zwp_virtual_keyboard_v1 *keyboard_ = nullptr;
    std::uint32_t time_ = 0;
};

} // namespace pavonel::test
