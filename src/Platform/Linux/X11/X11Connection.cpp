#include "Platform/Linux/X11/X11Connection.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace pavonel {

namespace {

/// Null where Qt runs on something else.
xcb_connection_t *connectionOfQt() {
    const auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    const auto *qt =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return qt ? qt->connection() : nullptr;
}

/// Whether a compositor of Wayland listens where the environment says. The variable alone can be a leftover.
bool compositorAnswers() {
    const QString name = qEnvironmentVariable("WAYLAND_DISPLAY");
    const QByteArray path =
        QFile::encodeName(QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).absoluteFilePath(name));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return false;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const bool isHeard = ::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    const bool isBusy = !isHeard && errno == EAGAIN; // somebody listens, to many at once
    ::close(socket);
    return isHeard || isBusy;
}

} // namespace

std::shared_ptr<X11Connection> X11Connection::open(const QByteArray &display) {
    int screenNumber = 0;
    xcb_connection_t *connection =
        xcb_connect(display.isEmpty() ? nullptr : display.constData(), &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::shared_ptr<X11Connection>(new X11Connection(connection, screenNumber));
}

X11Connection::X11Connection(xcb_connection_t *connection, int screenNumber)
    : connection_(connection), screenNumber_(screenNumber),
      notifier_(xcb_get_file_descriptor(connection), QSocketNotifier::Read) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int skipped = 0; skipped < screenNumber && screens.rem > 1; ++skipped)
        xcb_screen_next(&screens);
    root_ = screens.data->root;
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                     [this] { dispatch(xcb_poll_for_event); });
    // While we wait for a reply, events get read along with it; the socket does not announce those again.
    if (auto *dispatcher = QAbstractEventDispatcher::instance())
        beforeSleep_ = QObject::connect(
            dispatcher, &QAbstractEventDispatcher::aboutToBlock, &notifier_, [this, qt = connectionOfQt()] {
                if (std::exchange(isUsed_, false) && dispatch(xcb_poll_for_queued_event))
                    QMetaObject::invokeMethod(
                        &notifier_, [] {}, Qt::QueuedConnection); // no beat waits after that
                if (qt)
                    xcb_flush(qt); // in GLib's event loop it sends only when the server speaks first
            });
}

X11Connection::~X11Connection() {
    QObject::disconnect(beforeSleep_);
    notifier_.setEnabled(false);
    xcb_disconnect(connection_);
}

bool X11Connection::isInsideWayland() {
    constexpr char name[] = "XWAYLAND";
    const XReply<xcb_query_extension_reply_t> extension(
        xcb_query_extension_reply(xcb(), xcb_query_extension(xcb(), sizeof name - 1, name), nullptr));
    return (extension && extension->present) || compositorAnswers(); // an old XWayland has no extension
}

xcb_atom_t X11Connection::atom(const char *name) {
    const auto known = atoms_.find(name);
    if (known != atoms_.end())
        return known->second;
    const auto length = static_cast<std::uint16_t>(qstrlen(name));
    const XReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(xcb(), xcb_intern_atom(xcb(), 0, length, name), nullptr));
    if (!reply)
        return XCB_ATOM_NONE;
    atoms_.emplace(name, reply->atom);
    return reply->atom;
}

std::vector<std::uint32_t> X11Connection::numbers(xcb_window_t window, const char *property) {
    const auto cookie =
        xcb_get_property(xcb(), 0, window, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, mostNumbers);
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(xcb(), cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto *items = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
    return {items, items + xcb_get_property_value_length(reply.get()) / 4};
}

std::uint32_t X11Connection::number(xcb_window_t window, const char *property) {
    const auto items = numbers(window, property);
    return items.empty() ? 0 : items.at(0); // GCC 14 warns of front() for no reason
}

std::optional<QRect> X11Connection::frame(xcb_window_t window) {
    const auto placeCookie = xcb_translate_coordinates(xcb(), window, root_, 0, 0);
    const auto sizeCookie = xcb_get_geometry(xcb(), window);
    const XReply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(xcb(), placeCookie, nullptr));
    const XReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(xcb(), sizeCookie, nullptr));
    if (!place || !size)
        return std::nullopt;
    return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

bool X11Connection::haveSameClient(xcb_window_t window, xcb_window_t other) const {
    return ((window ^ other) & ~xcb_get_setup(connection_)->resource_id_mask) == 0;
}

/// A manager that ended leaves its mark on the root window behind, but not on its own.
xcb_window_t X11Connection::windowManager() {
    constexpr char mark[] = "_NET_SUPPORTING_WM_CHECK";
    const xcb_window_t window = number(root_, mark);
    return window && number(window, mark) == window ? window : xcb_window_t{XCB_WINDOW_NONE};
}

X11Connection::SubscriptionHandle X11Connection::listen(Listener listener) {
    auto entry = std::make_shared<Listener>(std::move(listener));
    listeners_.push_back(entry);
    return std::make_unique<Subscription>([weak = weak_from_this(), entry] {
        if (const auto self = weak.lock())
            std::erase(self->listeners_, entry);
    });
}

X11Connection::SubscriptionHandle X11Connection::watch(xcb_window_t window, std::uint32_t mask) {
    auto entry = std::make_shared<WatchedWindow>(WatchedWindow{window, mask});
    watched_.push_back(entry);
    select(window);
    return std::make_unique<Subscription>([weak = weak_from_this(), entry] {
        if (const auto self = weak.lock()) {
            std::erase(self->watched_, entry);
            self->select(entry->window);
        }
    });
}

void X11Connection::select(xcb_window_t window) {
    std::uint32_t mask = XCB_EVENT_MASK_NO_EVENT;
    for (const auto &entry : watched_) {
        if (entry->window == window)
            mask |= entry->mask;
    }
    xcb_change_window_attributes(xcb(), window, XCB_CW_EVENT_MASK, &mask);
}

void X11Connection::awaitQt() {
    if (xcb_connection_t *const qt = connectionOfQt())
        const XReply<xcb_get_input_focus_reply_t> done(
            xcb_get_input_focus_reply(qt, xcb_get_input_focus(qt), nullptr));
}

void X11Connection::flush() {
    xcb_flush(connection_);
}

bool X11Connection::dispatch(Poll poll) {
    if (!isAlive())
        return false;
    bool any = false;
    const auto self = shared_from_this(); // a listener may let go of us
    while (const XReply<xcb_generic_event_t> event{poll(connection_)}) {
        any = true;
        if (event->response_type == 0)
            continue; // an error: some window went away under our hands
        // A listener may end its own subscription, or another one, while it is called.
        const std::vector<std::weak_ptr<Listener>> current(listeners_.begin(), listeners_.end());
        for (const auto &weak : current) {
            if (const auto listener = weak.lock())
                (*listener)(*event);
        }
    }
    xcb_flush(connection_);
    if (xcb_connection_has_error(connection_))
        notifier_.setEnabled(false);
    return any;
}

} // namespace pavonel
