#pragma once

#include <QByteArray>
#include <QMetaObject>
#include <QRect>
#include <QSocketNotifier>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

namespace pavonel {

struct FreeReply {
    void operator()(void *reply) const { std::free(reply); }
};
/// What libxcb hands out: to be freed, null on an error.
template <class Reply> using XReply = std::unique_ptr<Reply, FreeReply>;

/// Our own connection to the X server, shared by all X11 adapters. It is not Qt's, so that nothing we select
/// or ask for mixes with what Qt does, and an error of ours never reaches Qt's handlers. Before the main loop
/// sleeps, what was asked over either of them is sent.
/// Main thread only. A window that is gone, or a server that died, gives empty answers and never an abort.
class X11Connection : public std::enable_shared_from_this<X11Connection> {
public:
    /// Null where no X server answers. An empty name means the one that the environment names.
    static std::shared_ptr<X11Connection> open(const QByteArray &display = {});

    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;
    ~X11Connection();

    /// To ask something at once, not to be kept: what is asked later might wait.
    xcb_connection_t *xcb() {
        isUsed_ = true;
        return connection_;
    }
    xcb_window_t root() const { return root_; }

    /// The number of the X screen which `root` belongs to.
    int screenNumber() const { return screenNumber_; }

    /// Whether the server only stands in for one inside a Wayland session. Such a one sees the keys and the
    /// pointer only while an X window has them.
    bool isInsideWayland();

    /// False once the server is gone; it does not come back.
    bool isAlive() const { return notifier_.isEnabled(); }

    /// Asked of the server once a name, remembered after that. XCB_ATOM_NONE on a failure.
    xcb_atom_t atom(const char *name);

    /// A property of 32-bit items (windows, atoms, cardinals); empty when it is missing or of another kind.
    /// Any client may write lists of any length, so no more than `mostNumbers` are read.
    std::vector<std::uint32_t> numbers(xcb_window_t window, const char *property);
    static constexpr std::uint32_t mostNumbers = 1024; ///< More windows than anybody opens.

    /// The first item of such a property, 0 when there is none.
    std::uint32_t number(xcb_window_t window, const char *property);

    /// Where a window stands on the screen, in pixels and without its border; absent when it is gone.
    std::optional<QRect> frame(xcb_window_t window);

    /// Whether both windows were opened over the same connection to the server, and so by one program: its
    /// part of their numbers is the same.
    bool haveSameClient(xcb_window_t window, xcb_window_t other) const;

    /// The window by which the running window manager can be known; XCB_WINDOW_NONE where there is none.
    xcb_window_t windowManager();

    /// Ends what it stands for when destroyed. It may outlive the connection.
    class Subscription {
    public:
        explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
        Subscription(const Subscription &) = delete;
        Subscription &operator=(const Subscription &) = delete;
        ~Subscription() { end_(); }

    private:
        std::function<void()> end_;
    };
    using SubscriptionHandle = std::unique_ptr<Subscription>;

    /// `listener` gets every event of this connection, errors left out, on the main thread.
    using Listener = std::function<void(const xcb_generic_event_t &)>;
    [[nodiscard]] SubscriptionHandle listen(Listener listener);

    /// Selects events of a window (a mask of XCB_EVENT_MASK_…) in addition to what others selected there.
    [[nodiscard]] SubscriptionHandle watch(xcb_window_t window, std::uint32_t mask);

    /// Until the server has done what Qt asked for over its own connection. No event is served meanwhile,
    /// other than by QGuiApplication::sync(): a window that the caller has in hand stays.
    static void awaitQt();

    /// Sends what was asked so far, without waiting for the main loop.
    void flush();

private:
    X11Connection(xcb_connection_t *connection, int screenNumber);

    using Poll = xcb_generic_event_t *(*)(xcb_connection_t *);
    bool dispatch(Poll poll); ///< Whether there was anything.
    void select(xcb_window_t window);

    struct WatchedWindow {
        xcb_window_t window;
        std::uint32_t mask;
    };

    xcb_connection_t *connection_;
    int screenNumber_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    QSocketNotifier notifier_;
    QMetaObject::Connection beforeSleep_;
    bool isUsed_ = true; ///< Since the main loop slept.
    std::map<QByteArray, xcb_atom_t> atoms_;
    std::vector<std::shared_ptr<Listener>> listeners_;
    std::vector<std::shared_ptr<WatchedWindow>> watched_;
};

} // namespace pavonel
