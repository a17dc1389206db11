#pragma once

#include <QByteArray>
#include <QColor>
#include <QRect>

#include <cstdint>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

namespace pavonel::test {

/// Another program on an X server, seen by the server as any other one, and what an onlooker can ask it.
class XClient {
public:
    enum class Kind {
        normal,
        fullscreen, ///< Asks for it before it opens, as browsers and players do.
        dock,       ///< Keeps its edge for itself, see `openDock`.
        desktop,    ///< Lies below all others, as the icons of a desktop.
        unmanaged,  ///< As menus and screen lockers.
    };

    explicit XClient(const QByteArray &display);
    XClient(const XClient &) = delete;
    XClient &operator=(const XClient &) = delete;
    ~XClient(); ///< Closes all its windows, as the death of a program does.

    /// Opens a window and waits until it is on screen. Its place is the window manager's choice in the end.
    xcb_window_t open(const QRect &at, const QColor &colour, Kind kind = Kind::normal);

    /// `partial`: the twelve numbers of _NET_WM_STRUT_PARTIAL.
    xcb_window_t openDock(const QRect &at, const std::vector<std::uint32_t> &partial);

    void close(xcb_window_t window);

    /// As the button in a title bar does.
    void askToClose(xcb_window_t window);

    void move(xcb_window_t window, const QRect &to);
    void raise(xcb_window_t window);
    void focus(xcb_window_t window);

    /// Asks the window manager to bring a window to the front, as a taskbar does.
    void activate(xcb_window_t window);

    bool grabKey(xcb_keycode_t key, std::uint16_t modifiers);

    /// The window that has the keyboard, of whatever program.
    xcb_window_t focused();

    /// The window on top at a point, among the children of the root window.
    xcb_window_t topAt(QPoint point);

    /// The child of the root window that holds this one: itself, or the manager's frame around it.
    xcb_window_t topLevelOf(xcb_window_t window);

    /// From bottom to top, the root window's children.
    std::vector<xcb_window_t> stack();

    bool isViewable(xcb_window_t window);
    std::optional<QRect> geometry(xcb_window_t window);
    xcb_window_t activeWindow();

    /// A property of bytes, such as WM_CLASS; empty when it is missing or of another kind.
    QByteArray bytes(xcb_window_t window, const char *property);

    /// How often this client's windows saw a key go down, so far.
    int keyPresses();

    /// The same of mouse buttons.
    int clicks();

    xcb_connection_t *xcb() const { return connection_; }
    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(const char *name);

private:
    void setAtoms(xcb_window_t window, const char *property, const char *value);
    void sync();
    void readEvents();

    xcb_connection_t *connection_;
    xcb_window_t root_;
    int keyPresses_ = 0;
    int clicks_ = 0;
};

} // namespace pavonel::test
