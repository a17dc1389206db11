#pragma once

#include "Platform/Linux/Applications/FrontWindow.h"
#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/WindowList.h"

#include <QRect>
#include <QSet>

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace pavonel {

/// The managed windows of an X server, as its window manager tells of them. The first question subscribes to
/// their changes; from then on a question asks the server only about what changed since the last one.
class X11Windows {
public:
    /// `machineName` tells what this machine is called now; a network may rename it at any time.
    explicit X11Windows(std::shared_ptr<X11Connection> connection,
                        std::function<QByteArray()> machineName = nameOfMachine);
    X11Windows(const X11Windows &) = delete;
    X11Windows &operator=(const X11Windows &) = delete;
    ~X11Windows();

    /// Those that can be seen, from bottom to top, in points. Our own are left out, and so are those of
    /// which it is not known which program of this machine owns them, or which only give the process number
    /// of the program in front.
    std::vector<OnScreenWindow> onScreen();

    /// Absent also for one of our own windows.
    std::optional<FrontWindow> front();

    /// Whether the server is there and a window manager answers for its windows.
    bool isManaged();

    static QByteArray nameOfMachine();

private:
    struct Window {
        X11Connection::SubscriptionHandle watch;
        bool isStale = true;
        ProcessId owner = 0; ///< 0 when it is not known.
        QString windowClass;
        QString windowInstance;
        std::optional<int> layer; ///< None for an element of the desktop itself.
        bool isOnScreen = false;
        QRect geometry; ///< In pixels of the root window.
    };
    struct Question;

    bool update();
    void subscribe();
    void notice(const xcb_generic_event_t &event);
    bool isNamesakeOfFront(const std::pair<const xcb_window_t, Window> &entry) const;
    bool isOneOf(std::span<const char *const> names, xcb_atom_t property) const;
    void readRoot();
    void readWindows();
    Question ask(xcb_window_t window);
    void answer(Window &window, const Question &question);
    ProcessId clientIn(const Question &question) const;
    int layerOf(const std::vector<std::uint32_t> &types) const;
    bool isShown(const std::vector<std::uint32_t> &states, const std::vector<std::uint32_t> &desktop) const;

    std::shared_ptr<X11Connection> connection_;
    X11Connection::SubscriptionHandle listening_;
    X11Connection::SubscriptionHandle rootWatch_;
    bool rootIsStale_ = true;
    std::vector<xcb_window_t> stacking_;
    std::map<xcb_window_t, Window> windows_;
    xcb_window_t active_ = XCB_WINDOW_NONE;
    std::uint32_t desktop_ = 0;
    std::function<QByteArray()> machineName_;
    bool tellsClients_ = false;     ///< The server knows which process opened a window.
    QSet<QByteArray> machineNames_; ///< All so far: a window keeps the one of the time when it opened.
};

class X11WindowList final : public WindowList {
public:
    explicit X11WindowList(std::shared_ptr<X11Windows> windows) : windows_(std::move(windows)) {}
    std::vector<OnScreenWindow> onScreenWindows() override { return windows_->onScreen(); }
    QString limitation() const override;

private:
    std::shared_ptr<X11Windows> windows_;
};

class X11FrontWindow final : public FrontWindowSource {
public:
    explicit X11FrontWindow(std::shared_ptr<X11Windows> windows) : windows_(std::move(windows)) {}
    std::optional<FrontWindow> frontWindow() override { return windows_->front(); }
    QString limitation() const override;

private:
    std::shared_ptr<X11Windows> windows_;
};

} // namespace pavonel
