#pragma once

#include "Platform/Inset.h"
#include "Platform/Linux/X11/X11Connection.h"

class QWindow;

namespace pavonel {

/// A window within the window. The server draws it from a picture that it keeps, so whatever uncovers it, we
/// are not asked; nor are we told of anything else.
class X11Inset final : public Inset {
public:
    /// Null on a screen with other than eight bits for each of three colours.
    static std::unique_ptr<X11Inset> make(std::shared_ptr<X11Connection> connection, QWindow &window,
                                          const QRect &points);
    ~X11Inset() override;

    void show(const QRect &pixels) override;

private:
    X11Inset(std::shared_ptr<X11Connection> connection, QWindow &window, const QRect &points,
             std::uint8_t depth);

    void send(const QRect &pixels);

    std::shared_ptr<X11Connection> connection_;
    std::uint8_t depth_;
    xcb_window_t window_;
    xcb_pixmap_t stored_;
    xcb_gcontext_t context_;
    bool isMapped_ = false;
};

} // namespace pavonel
