#include "Platform/Linux/X11/X11Windows.h"

#include "Platform/Linux/X11/X11Points.h"

#include <QFile>
#include <QSysInfo>

#include <algorithm>
#include <unordered_set>
#include <utility>

#include <unistd.h>
#include <xcb/res.h>

namespace pavonel {

namespace {

constexpr std::uint32_t allDesktops = 0xffffffff;
constexpr int floatingLayer = 3; // menus, tooltips, splash screens and their like
constexpr int dockLayer = 20;

constexpr const char *rootProperties[] = {"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST",
                                          "_NET_CLIENT_LIST_STACKING", "_NET_CURRENT_DESKTOP"};

/// Those that change while a window is open. Titles change often, and say nothing here.
constexpr const char *windowProperties[] = {"_NET_WM_STATE", "_NET_WM_DESKTOP", "_NET_WM_PID", "WM_CLASS"};

constexpr std::uint32_t longestProperty = 64; // in items of four bytes: longer ones say nothing to us

using Reply = XReply<xcb_get_property_reply_t>;

std::vector<std::uint32_t> numbersIn(const Reply &reply) {
    if (!reply || reply->format != 32)
        return {};
    const auto *items = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
    return {items, items + xcb_get_property_value_length(reply.get()) / 4};
}

QByteArray bytesIn(const Reply &reply) {
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

/// Whether the process has this number in a name space of its own, as programs in a sandbox do.
bool isCalledInASandbox(ProcessId process, ProcessId number) {
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QFile::ReadOnly))
        return false;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("NSpid:")) {
            const QByteArrayList numbers = line.simplified().split(' ');
            return numbers.size() > 2 && numbers.last() == QByteArray::number(number);
        }
    }
    return false;
}

} // namespace

/// All that is asked about a window, on its way together.
struct X11Windows::Question {
    xcb_connection_t *connection;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t place;
    xcb_res_query_client_ids_cookie_t client;
    xcb_get_property_cookie_t process;
    xcb_get_property_cookie_t machine;
    xcb_get_property_cookie_t windowClass;
    xcb_get_property_cookie_t types;
    xcb_get_property_cookie_t states;
    xcb_get_property_cookie_t desktop;

    Reply property(xcb_get_property_cookie_t cookie) const {
        return Reply(xcb_get_property_reply(connection, cookie, nullptr));
    }
};

X11Windows::X11Windows(std::shared_ptr<X11Connection> connection, std::function<QByteArray()> machineName)
    : connection_(std::move(connection)), machineName_(std::move(machineName)) {
    const auto *const resources = xcb_get_extension_data(connection_->xcb(), &xcb_res_id);
    tellsClients_ = resources && resources->present != 0;
}

X11Windows::~X11Windows() = default;

QByteArray X11Windows::nameOfMachine() {
    return QSysInfo::machineHostName().toLocal8Bit();
}

std::vector<OnScreenWindow> X11Windows::onScreen() {
    std::vector<OnScreenWindow> result;
    if (!update())
        return result;
    for (const xcb_window_t id : stacking_) {
        const auto found = windows_.find(id);
        if (found == windows_.end())
            continue;
        const Window &window = found->second;
        if (window.isOnScreen && window.layer && window.owner > 0 && window.owner != ::getpid() &&
            !isNamesakeOfFront(*found))
            result.push_back({window.owner, window.layer, pointsOfPixels(window.geometry)});
    }
    return result;
}

/// Each sandbox counts its processes anew, so many programs give the same low number. But what belongs to one
/// program comes over one connection to the server.
bool X11Windows::isNamesakeOfFront(const std::pair<const xcb_window_t, Window> &entry) const {
    const auto front = windows_.find(active_);
    return front != windows_.end() && front->second.owner == entry.second.owner &&
           !connection_->haveSameClient(active_, entry.first);
}

std::optional<FrontWindow> X11Windows::front() {
    if (!update())
        return {};
    const auto found = windows_.find(active_);
    if (found == windows_.end() || found->second.owner == ::getpid())
        return {};
    const Window &window = found->second;
    return FrontWindow{active_, window.owner, window.windowClass, window.windowInstance};
}

bool X11Windows::isManaged() {
    return connection_->isAlive() && connection_->windowManager() != XCB_WINDOW_NONE;
}

bool X11Windows::update() {
    if (!connection_->isAlive())
        return false;
    if (!listening_)
        subscribe();
    if (std::exchange(rootIsStale_, false))
        readRoot();
    readWindows();
    return connection_->isAlive();
}

void X11Windows::subscribe() {
    listening_ = connection_->listen([this](const xcb_generic_event_t &event) { notice(event); });
    rootWatch_ = connection_->watch(connection_->root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void X11Windows::notice(const xcb_generic_event_t &event) {
    const auto makeStale = [this](xcb_window_t id) {
        if (const auto found = windows_.find(id); found != windows_.end())
            found->second.isStale = true;
    };
    switch (event.response_type & 0x7f) {
    case XCB_PROPERTY_NOTIFY: {
        const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (change.window != connection_->root() && isOneOf(windowProperties, change.atom))
            makeStale(change.window);
        else if (change.window == connection_->root() && isOneOf(rootProperties, change.atom))
            rootIsStale_ = true;
        break;
    }
    case XCB_CONFIGURE_NOTIFY:
        makeStale(reinterpret_cast<const xcb_configure_notify_event_t &>(event).window);
        break;
    case XCB_MAP_NOTIFY:
        makeStale(reinterpret_cast<const xcb_map_notify_event_t &>(event).window);
        break;
    case XCB_UNMAP_NOTIFY:
        makeStale(reinterpret_cast<const xcb_unmap_notify_event_t &>(event).window);
        break;
    case XCB_REPARENT_NOTIFY:
        makeStale(reinterpret_cast<const xcb_reparent_notify_event_t &>(event).window);
        break;
    case XCB_DESTROY_NOTIFY: // its number may be given again, to a window that has to be watched anew
        windows_.erase(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
        break;
    default:
        break;
    }
}

bool X11Windows::isOneOf(std::span<const char *const> names, xcb_atom_t property) const {
    return std::any_of(names.begin(), names.end(),
                       [&](const char *name) { return property == connection_->atom(name); });
}

void X11Windows::readRoot() {
    stacking_ = connection_->numbers(connection_->root(), "_NET_CLIENT_LIST_STACKING");
    std::unordered_set<xcb_window_t> listed(stacking_.begin(), stacking_.end());
    // Some managers leave their newest windows out of the former list until something is stacked anew.
    for (const xcb_window_t id : connection_->numbers(connection_->root(), "_NET_CLIENT_LIST")) {
        if (listed.insert(id).second)
            stacking_.push_back(id);
    }
    active_ = connection_->number(connection_->root(), "_NET_ACTIVE_WINDOW");
    desktop_ = connection_->number(connection_->root(), "_NET_CURRENT_DESKTOP");
    std::erase_if(windows_, [&listed](const auto &entry) { return !listed.contains(entry.first); });
    for (const xcb_window_t id : stacking_) {
        Window &window = windows_[id];
        window.isStale = true; // it may be on another desktop now, or hidden
        if (!window.watch)
            window.watch =
                connection_->watch(id, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
}

void X11Windows::readWindows() {
    std::vector<std::pair<Window *, Question>> asked;
    for (auto &[id, window] : windows_) {
        if (std::exchange(window.isStale, false))
            asked.emplace_back(&window, ask(id));
    }
    if (!asked.empty())
        machineNames_.insert(machineName_());
    for (const auto &[window, question] : asked)
        answer(*window, question);
}

X11Windows::Question X11Windows::ask(xcb_window_t window) {
    xcb_connection_t *const xcb = connection_->xcb();
    const auto property = [&](const char *name) {
        return xcb_get_property(xcb, 0, window, connection_->atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0,
                                longestProperty);
    };
    const xcb_res_client_id_spec_t itsProcess{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return {.connection = xcb,
            .attributes = xcb_get_window_attributes(xcb, window),
            .geometry = xcb_get_geometry(xcb, window),
            .place = xcb_translate_coordinates(xcb, window, connection_->root(), 0, 0),
            .client = tellsClients_ ? xcb_res_query_client_ids(xcb, 1, &itsProcess)
                                    : xcb_res_query_client_ids_cookie_t{},
            .process = property("_NET_WM_PID"),
            .machine = property("WM_CLIENT_MACHINE"),
            .windowClass = property("WM_CLASS"),
            .types = property("_NET_WM_WINDOW_TYPE"),
            .states = property("_NET_WM_STATE"),
            .desktop = property("_NET_WM_DESKTOP")};
}

/// Every reply is fetched, also of a window that is gone: those come as nothing.
void X11Windows::answer(Window &window, const Question &question) {
    const XReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(question.connection, question.attributes, nullptr));
    const XReply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(question.connection, question.geometry, nullptr));
    const XReply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(question.connection, question.place, nullptr));
    const auto process = numbersIn(question.property(question.process));
    const QByteArray machine = bytesIn(question.property(question.machine));
    const auto types = numbersIn(question.property(question.types));
    const auto states = numbersIn(question.property(question.states));
    const auto desktop = numbersIn(question.property(question.desktop));

    const bool isLocal = machine.isEmpty() || machineNames_.contains(machine);
    window.owner = isLocal && !process.empty() ? static_cast<ProcessId>(process.front()) : 0;
    if (const ProcessId client = clientIn(question);
        window.owner == 0 || (client > 0 && isCalledInASandbox(client, window.owner)))
        window.owner = client;
    const auto names = bytesIn(question.property(question.windowClass)).split('\0');
    window.windowInstance = QString::fromLocal8Bit(names.value(0));
    window.windowClass = QString::fromLocal8Bit(names.value(1).isEmpty() ? names.value(0) : names.value(1));
    window.layer.reset();
    if (std::find(types.begin(), types.end(), connection_->atom("_NET_WM_WINDOW_TYPE_DESKTOP")) ==
        types.end())
        window.layer = layerOf(types);
    window.isOnScreen = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE && size && place &&
                        isShown(states, desktop);
    if (window.isOnScreen)
        window.geometry = {place->dst_x, place->dst_y, size->width, size->height};
}

/// The process that opened the window, as the server learned it from the kernel; 0 when it does not tell, or
/// when the process is on another machine.
ProcessId X11Windows::clientIn(const Question &question) const {
    const XReply<xcb_res_query_client_ids_reply_t> reply(
        tellsClients_ ? xcb_res_query_client_ids_reply(question.connection, question.client, nullptr)
                      : nullptr);
    if (!reply)
        return 0;
    for (auto client = xcb_res_query_client_ids_ids_iterator(reply.get()); client.rem > 0;
         xcb_res_client_id_value_next(&client)) {
        if ((client.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(client.data) > 0)
            return static_cast<ProcessId>(*xcb_res_client_id_value_value(client.data));
    }
    return 0;
}

/// The first type that is known decides; a window without one is a normal window.
int X11Windows::layerOf(const std::vector<std::uint32_t> &types) const {
    for (const xcb_atom_t type : types) {
        if (type == connection_->atom("_NET_WM_WINDOW_TYPE_NORMAL") ||
            type == connection_->atom("_NET_WM_WINDOW_TYPE_DIALOG"))
            return 0;
        if (type == connection_->atom("_NET_WM_WINDOW_TYPE_DOCK"))
            return dockLayer;
        for (const char *floating :
             {"_NET_WM_WINDOW_TYPE_TOOLBAR", "_NET_WM_WINDOW_TYPE_MENU", "_NET_WM_WINDOW_TYPE_UTILITY",
              "_NET_WM_WINDOW_TYPE_SPLASH", "_NET_WM_WINDOW_TYPE_NOTIFICATION"}) {
            if (type == connection_->atom(floating))
                return floatingLayer;
        }
    }
    return 0;
}

bool X11Windows::isShown(const std::vector<std::uint32_t> &states,
                         const std::vector<std::uint32_t> &desktop) const {
    if (std::find(states.begin(), states.end(), connection_->atom("_NET_WM_STATE_HIDDEN")) != states.end())
        return false;
    return desktop.empty() || desktop.front() == allDesktops || desktop.front() == desktop_;
}

QString X11WindowList::limitation() const {
    return windows_->isManaged()
               ? QString()
               : QStringLiteral(
                     "The window manager does not tell about windows, so fullscreen programs go unnoticed.");
}

QString X11FrontWindow::limitation() const {
    return windows_->isManaged()
               ? QString()
               : QStringLiteral("The window manager does not tell which program is in front.");
}

} // namespace pavonel
