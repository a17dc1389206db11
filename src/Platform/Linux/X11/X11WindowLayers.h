#pragma once

#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11KeyboardFocus.h"
#include "Platform/WindowLayers.h"

#include <QPointer>
#include <QTimer>

#include <map>
#include <vector>

namespace pavonel {

/// Windows that the window manager does not manage: they stand exactly where they are told to, on all
/// desktops, in no list, and no fullscreen window is put above them by the manager's rules. In exchange we
/// keep them on top ourselves, whenever the server tells of another window that came to lie above.
class X11WindowLayers final : public WindowLayers {
public:
    explicit X11WindowLayers(std::shared_ptr<X11Connection> connection);
    ~X11WindowLayers() override;

    Qt::WindowFlags windowFlags(WindowLayer layer) const override;
    void show(QWindow &window, WindowLayer layer, const Screen &screen) override;
    bool canBlend() const override;
    bool canFade() const override { return canBlend(); }
    std::unique_ptr<Inset> inset(QWindow &window, const QRect &points) override;
    void cutTo(QWindow &window, const QRegion &pixels) override;
    void takeKeyboard(QWindow &window) override;
    void yieldKeyboard() override;

private:
    struct Layered {
        QPointer<QWindow> window;
        xcb_window_t id;
        WindowLayer layer;
        QString screenName;
    };

    void forget(const QWindow *window);
    void followVisibility();
    void notice(const xcb_generic_event_t &event);
    void noticeMapped(const xcb_map_notify_event_t &event);
    void noticeConfigured(const xcb_configure_notify_event_t &event);
    void keepFrame(const Layered &layered);
    bool isOverlayVisible() const;
    bool isManaged(xcb_window_t window, bool overrideRedirect) const;
    const Layered *find(xcb_window_t window) const;

    void checkSoon();
    void check();
    std::vector<xcb_window_t> wantedOrder() const;
    void raise(const std::vector<xcb_window_t> &order);

    std::shared_ptr<X11Connection> connection_;
    X11KeyboardFocus keyboard_;
    std::vector<Layered> windows_;
    std::map<xcb_window_t, xcb_window_t> belowOf_; ///< The neighbour below of each window that was restacked.
    xcb_window_t managersWindow_ = XCB_WINDOW_NONE;
    X11Connection::SubscriptionHandle rootWatch_; ///< Only while one of our windows is visible.
    X11Connection::SubscriptionHandle listening_;
    QTimer checkSoon_;
    QTimer newAllowance_;
    int allowance_; ///< How often we may raise until the next one.
};

} // namespace pavonel
