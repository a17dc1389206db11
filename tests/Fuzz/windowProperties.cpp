#include "Fuzz/Source.h"
#include "Fuzz/Target.h"
#include "Fuzz/onlyOne.h"
#include "Platform/Linux/X11/X11Struts.h"
#include "Platform/Linux/X11/X11Windows.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <QEventLoop>

#include <algorithm>
#include <array>

namespace pavonel::fuzz {

namespace {

constexpr QRect monitor(0, 0, 1920, 1080);

constexpr std::array propertyNames{"_NET_CLIENT_LIST",
                                   "_NET_CLIENT_LIST_STACKING",
                                   "_NET_ACTIVE_WINDOW",
                                   "_NET_CURRENT_DESKTOP",
                                   "_NET_SUPPORTING_WM_CHECK",
                                   "_NET_WORKAREA",
                                   "_NET_WM_PID",
                                   "WM_CLIENT_MACHINE",
                                   "WM_CLASS",
                                   "_NET_WM_WINDOW_TYPE",
                                   "_NET_WM_STATE",
                                   "_NET_WM_DESKTOP",
                                   "_NET_WM_STRUT",
                                   "_NET_WM_STRUT_PARTIAL",
                                   "_NET_WM_NAME",
                                   "_NET_WM_ICON"};
constexpr std::array typeNames{"CARDINAL", "ATOM", "WINDOW", "STRING", "UTF8_STRING"};
constexpr std::array<std::uint8_t, 3> formats{8, 16, 32};

template <class List> auto oneOf(const List &list, Source &source) {
    return list.at(static_cast<std::size_t>(source.byte()) % list.size());
}

/// A server without a manager, so that whoever wants to can say what a manager would say.
class Desktop {
public:
    Desktop() {
        windows_ = {client_.root(), client_.open({0, 0, 100, 100}, Qt::red, test::XClient::Kind::unmanaged),
                    client_.open({100, 0, 100, 100}, Qt::red, test::XClient::Kind::unmanaged)};
        for (const char *name : propertyNames)
            properties_.push_back(client_.atom(name));
        for (const char *name : typeNames)
            types_.push_back(client_.atom(name));
        require(ours_ != nullptr);
    }

    /// The window, the property, its type and format, how many bytes, and these.
    void write(Source &source) {
        const xcb_window_t window = oneOf(windows_, source);
        const xcb_atom_t property = oneOf(properties_, source);
        const xcb_atom_t type = oneOf(types_, source);
        const std::uint8_t format = oneOf(formats, source);
        const QByteArray bytes = withWindows(source.rest(source.byte() * qsizetype{4}));
        xcb_change_property(client_.xcb(), XCB_PROP_MODE_REPLACE, window, property, type, format,
                            static_cast<std::uint32_t>(bytes.size() * 8 / format), bytes.constData());
        written_.emplace_back(window, property);
    }

    /// A list is read to its limit, and some of each monitor is always free.
    void look() {
        client_.focused(); // waits until the server has all
        const auto onlyOurs = [] { return QByteArray("here"); };
        X11Windows windows(ours_, onlyOurs);
        require(windows.onScreen().size() <= 2 * X11Connection::mostNumbers);
        static_cast<void>(windows.front());
        static_cast<void>(windows.isManaged());
        X11Struts struts(ours_);
        const QRect free = struts.visiblePart(monitor);
        require(!free.isEmpty() && monitor.contains(free));
        turnMainLoop();
        static_cast<void>(windows.onScreen());
        require(struts.visiblePart(monitor) == free && ours_->isAlive());
    }

    void clean() {
        for (const auto &[window, property] : written_)
            xcb_delete_property(client_.xcb(), window, property);
        written_.clear();
    }

private:
    /// Once, and as if it went to sleep: only then does the connection take the events that came along with
    /// replies. All of them, or they would pile up.
    void turnMainLoop() {
        QEventLoop loop;
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        loop.exec();
        require(XReply<xcb_generic_event_t>(xcb_poll_for_queued_event(ours_->xcb())) == nullptr);
    }

    /// Nobody guesses the number of a window: the smallest stand for the windows that there are.
    QByteArray withWindows(QByteArray bytes) const {
        for (qsizetype at = 0; at + 4 <= bytes.size(); at += 4) {
            std::uint32_t number = 0;
            std::memcpy(&number, bytes.constData() + at, sizeof number);
            if (number < windows_.size())
                std::memcpy(bytes.data() + at, &windows_[number], sizeof number);
        }
        return bytes;
    }

    test::XServer server_{monitor.size()};
    test::XClient client_{server_.display()};
    std::shared_ptr<X11Connection> ours_ = X11Connection::open(server_.display());
    std::vector<xcb_window_t> windows_;
    std::vector<xcb_atom_t> properties_;
    std::vector<xcb_atom_t> types_;
    std::vector<std::pair<xcb_window_t, xcb_atom_t>> written_;
};

} // namespace

/// Properties, one after the other, as any program can give them to any window.
void windowProperties(const QByteArray &input) {
    auto &desktop = onlyOne<Desktop>();
    Source source(input);
    for (int left = 32; left > 0 && !source.isEmpty(); --left)
        desktop.write(source);
    desktop.look();
    desktop.clean();
}

} // namespace pavonel::fuzz
