#pragma once

#include "Platform/Linux/Tray/TrayMenu.h"
#include "Platform/Linux/X11/X11Connection.h"

#include <QImage>
#include <QString>

#include <functional>

namespace pavonel {

/// Our place in a system tray that takes windows in (freedesktop.org's System Tray Protocol, with XEmbed):
/// the icon with the title beside it, in a colour that reads on the tray. Trays may come late, go, and come
/// back.
class EmbeddedTray {
public:
    /// `presenceChanged` is called when a tray of this kind came or went; `showMenu` on a click.
    EmbeddedTray(std::shared_ptr<X11Connection> x, std::function<void()> presenceChanged,
                 std::function<void(const TrayPlace &)> showMenu);
    ~EmbeddedTray();

    bool isPresent() const { return manager_ != XCB_WINDOW_NONE; }

    /// Takes a place while there is a tray; without this, none is taken.
    void setVisible(bool visible);

    void setIcon(const std::vector<QImage> &images);
    void setTitle(const QString &title);

private:
    void handle(const xcb_generic_event_t &event);
    void findManager();
    void openMenu();
    TrayPlace place();
    void dock();
    void undock();
    int wantedWidth() const;
    void hintSize();
    void resizeToContent();
    void draw();
    QImage background();
    void put(const QImage &image);

    std::shared_ptr<X11Connection> x_;
    std::function<void()> presenceChanged_;
    std::function<void(const TrayPlace &)> showMenu_;
    xcb_window_t manager_ = XCB_WINDOW_NONE; ///< The tray, while there is one.
    xcb_window_t window_ = XCB_WINDOW_NONE;  ///< Ours, while we have a place.
    QSize size_{1, 1};
    bool visible_ = false;
    std::vector<QImage> images_;
    QString title_;
    X11Connection::SubscriptionHandle listening_;
    X11Connection::SubscriptionHandle watchingRoot_;
    X11Connection::SubscriptionHandle watchingManager_;
    X11Connection::SubscriptionHandle watchingWindow_;
};

} // namespace pavonel
