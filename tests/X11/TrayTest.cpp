#include "Platform/Linux/Tray/TrayStatusItem.h"
#include "Platform/Qt/QtMainLoop.h"
#include "X11/server.h"
#include "support/FakePlatform.h"
#include "support/XClient.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDeadlineTimer>
#include <QScreen>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

std::vector<QImage> icon() {
    QImage image(18, 18, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return {image};
}

bool isPicture(const QImage &image) {
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixel(x, y) != image.pixel(0, 0))
                return true;
        }
    }
    return false;
}

/// A desktop with a panel that holds nothing but the place for items, at the top left.
class Tray : public ::testing::Test {
protected:
    Tray() {
        server().start(XServer::WindowManager::xfwm4);
        const QString address = environment().value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        bus = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(address, QStringLiteral("tray-test")));
        EXPECT_TRUE(bus->isConnected());
    }
    ~Tray() override {
        item.reset();
        host.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("tray-test"));
    }

    QProcessEnvironment environment() const { return server().environment(); }
    QString config(const char *file) const {
        return environment().value(QStringLiteral("HOME")) + QStringLiteral("/.config/") +
               QString::fromLatin1(file);
    }

    void makeItem() {
        item = std::make_unique<TrayStatusItem>(*bus, icons.path(), loop, appearance,
                                                X11Connection::open(server().display()));
        item->setMenu([this] {
            ++menusMade;
            Menu menu(commands, {MenuItem::Kind::command,
                                 QStringLiteral("Take a micro break"),
                                 {},
                                 [this] { ++breaks; },
                                 {}});
            menu.insert(menu.begin(),
                        {MenuItem::Kind::label, QStringLiteral("Micro break: 19:58"), {}, {}, {}});
            return menu;
        });
        item->setIcon(QStringLiteral("menubar"), icon());
        item->setTitle(QStringLiteral("20m"));
    }

    /// A person's click on the item and, in the menu that shows, the first command by keyboard. On a busy
    /// machine a panel may miss a click or a key: like a person, try again.
    void chooseFirstCommand(QPoint place, const QString &button = QStringLiteral("1")) {
        ASSERT_TRUE(waitUntil([&] { return item->limitation().isEmpty(); })) << "no host";
        const QImage before = server().picture(belowPanel);
        bool opened = false;
        const QDeadlineTimer deadline(generousTimeout);
        while (breaks == 0 && !deadline.hasExpired()) {
            server().xdotool({QStringLiteral("mousemove"), QString::number(place.x()),
                              QString::number(place.y()), QStringLiteral("click"), button});
            if (waitUntil([&] { return isMenuOpen(before); }, 5000)) {
                opened = true;
                server().xdotool({QStringLiteral("key"), QStringLiteral("Down"), QStringLiteral("Return")});
                waitUntil([&] { return breaks > 0; }, 5000);
            }
            server().xdotool({QStringLiteral("key"), QStringLiteral("Escape")});
            waitUntil([&] { return !isMenuOpen(before); }, 5000);
        }
        EXPECT_TRUE(opened) << "no menu";
        EXPECT_EQ(breaks, 1) << "the command did not act";
        EXPECT_GT(menusMade, 1) << "the menu is made anew when it is about to show";
    }

    /// Something of a menu's size has appeared below the panel.
    static constexpr QRect belowPanel{60, 36, 60, 12};
    static bool isMenuOpen(const QImage &before) { return server().picture(belowPanel) != before; }

    void startLxqt() {
        writeFile(config("lxqt/panel.conf"),
                  "panels=panel1\n[panel1]\nalignment=-1\ndesktop=0\npanelSize=32\n"
                  "iconSize=22\nplugins=statusnotifier\nposition=Top\nwidth=100\n"
                  "width-percent=true\n[statusnotifier]\ntype=statusnotifier\n");
        host = server().launch(QStringLiteral("lxqt-panel"), {});
    }

    bool isShown(QRect place) {
        return waitUntil([&] { return isPicture(server().picture(place)); });
    }

    QTemporaryDir icons;
    QtMainLoop loop;
    FakeAppearance appearance;
    std::unique_ptr<QDBusConnection> bus;
    std::unique_ptr<ChildProcess> host;
    std::unique_ptr<TrayStatusItem> item;
    std::size_t commands = 1; ///< In the menu.
    int menusMade = 0;
    int breaks = 0;
};

/// A tray that takes windows in and makes them as large as it likes.
class LyingTray {
public:
    explicit LyingTray(const QByteArray &display)
        : client_(display),
          window_(client_.open({0, 0, size.width(), size.height()}, Qt::gray, XClient::Kind::unmanaged)) {
        const xcb_atom_t selection = client_.atom("_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(client_.xcb(), window_, selection, XCB_CURRENT_TIME);
        xcb_client_message_event_t announcement{};
        announcement.response_type = XCB_CLIENT_MESSAGE;
        announcement.format = 32;
        announcement.window = client_.root();
        announcement.type = client_.atom("MANAGER");
        announcement.data.data32[1] = selection;
        announcement.data.data32[2] = window_;
        xcb_send_event(client_.xcb(), 0, client_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char *>(&announcement));
        xcb_flush(client_.xcb());
    }

    /// Whether an item came, which is then blown up.
    bool takesAnItemIn() {
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(client_.xcb())}) {
            const auto &message = reinterpret_cast<const xcb_client_message_event_t &>(*event);
            if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE ||
                message.type != client_.atom("_NET_SYSTEM_TRAY_OPCODE"))
                continue;
            item_ = message.data.data32[2];
            xcb_reparent_window(client_.xcb(), item_, window_, 0, 0);
            xcb_map_window(client_.xcb(), item_);
            client_.move(item_, QRect(QPoint(0, 0), size));
        }
        return item_ != XCB_WINDOW_NONE;
    }

    static constexpr QSize size{5600, 1000}; // of a picture larger than a server takes in one request

private:
    XClient client_;
    xcb_window_t window_;
    xcb_window_t item_ = XCB_WINDOW_NONE;
};

constexpr QRect lxqtPlace(2, 2, 28, 28);

} // namespace

TEST_F(Tray, without_a_host_it_says_so_and_waits) {
    makeItem();
    EXPECT_FALSE(item->limitation().isEmpty());
    startLxqt();
    EXPECT_TRUE(waitUntil([&] { return item->limitation().isEmpty(); })) << "the host came late";
    EXPECT_TRUE(isShown(lxqtPlace));
}

TEST_F(Tray, the_item_comes_back_when_its_host_restarts) {
    startLxqt();
    makeItem();
    ASSERT_TRUE(isShown(lxqtPlace));
    host.reset();
    EXPECT_TRUE(waitUntil([&] { return !item->limitation().isEmpty(); }));
    startLxqt();
    EXPECT_TRUE(waitUntil([&] { return item->limitation().isEmpty(); }));
    EXPECT_TRUE(isShown(lxqtPlace));
}

TEST_F(Tray, in_lxqt_either_button_opens_the_menu) {
    startLxqt();
    makeItem();
    ASSERT_TRUE(isShown(lxqtPlace));
    chooseFirstCommand(lxqtPlace.center());
    breaks = 0;
    chooseFirstCommand(lxqtPlace.center(), QStringLiteral("3"));
}

TEST_F(Tray, in_xfce_the_item_shows_and_its_menu_acts) {
    writeFile(config("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array"><value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>)");
    host = server().launch(QStringLiteral("xfce4-panel"), {QStringLiteral("--disable-wm-check")});
    makeItem();
    ASSERT_TRUE(isShown({6, 6, 20, 20}));
    chooseFirstCommand({16, 16});
}

TEST_F(Tray, in_mate_the_live_label_shows_beside_the_icon) {
    const auto set = [](const char *schema, const char *key, const char *value) {
        server().run(QStringLiteral("gsettings"), {QStringLiteral("set"), QString::fromLatin1(schema),
                                                   QString::fromLatin1(key), QString::fromLatin1(value)});
    };
    constexpr auto toplevel = "org.mate.panel.toplevel:/org/mate/panel/toplevels/top/";
    constexpr auto object = "org.mate.panel.object:/org/mate/panel/objects/indicators/";
    set("org.mate.panel", "object-id-list", "['indicators']");
    set("org.mate.panel", "toplevel-id-list", "['top']");
    set(toplevel, "orientation", "top");
    set(object, "object-type", "applet");
    set(object, "applet-iid", "IndicatorAppletCompleteFactory::IndicatorAppletComplete");
    set(object, "toplevel-id", "top");
    set(object, "position", "0");
    const auto indicators = server().launch(
        QStringLiteral("/usr/libexec/ayatana-indicator-application/ayatana-indicator-application-service"),
        {});
    host = server().launch(QStringLiteral("mate-panel"), {});
    makeItem();
    const QRect label(28, 2, 40, 20);
    ASSERT_TRUE(isShown(label)) << "no label beside the icon";

    const QImage before = server().picture(label);
    item->setTitle(QStringLiteral("45s"));
    EXPECT_TRUE(waitUntil([&] { return server().picture(label) != before; })) << "the label is not live";
    chooseFirstCommand({12, 12});
}

TEST_F(Tray, in_a_tray_that_takes_windows_in_the_title_stands_beside_the_icon) {
    makeItem();
    host = server().launch(QStringLiteral("trayer"),
                           {QStringLiteral("--edge"), QStringLiteral("top"), QStringLiteral("--align"),
                            QStringLiteral("left"), QStringLiteral("--widthtype"), QStringLiteral("request"),
                            QStringLiteral("--height"), QStringLiteral("24")});
    const QRect title(25, 2, 20, 20);
    ASSERT_TRUE(isShown(title)) << "no title";
    EXPECT_TRUE(item->limitation().isEmpty());
    chooseFirstCommand({10, 10});

    host.reset();
    EXPECT_TRUE(waitUntil([&] { return !item->limitation().isEmpty(); })) << "the tray went";
}

void point(QPoint at) {
    server().xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
}

void click() {
    server().xdotool({QStringLiteral("click"), QStringLiteral("1")});
}

/// The pointer goes there and never quite rests, as in a hand: since Qt 6.8 a menu heeds no button before the
/// pointer has moved within it some times.
bool marksWhatIsAt(QPoint at, const QMenu &menu) {
    int step = 0;
    return waitUntil([&] {
        point(at + QPoint(++step % 2, 0));
        return menu.activeAction() != nullptr;
    });
}

/// A tray that takes windows in, at an edge of the screen.
class EmbeddedAt : public Tray, public testing::WithParamInterface<const char *> {
protected:
    void startTrayer() {
        host = server().launch(QStringLiteral("trayer"),
                               {QStringLiteral("--edge"), QString::fromLatin1(GetParam()),
                                QStringLiteral("--align"), alignment, QStringLiteral("--widthtype"),
                                QStringLiteral("request"), QStringLiteral("--height"), QStringLiteral("24")});
        EXPECT_TRUE(waitUntil([&] { return item->limitation().isEmpty() && isInItsCorner(); }));
    }

    /// When the tray has grown by the item it moves, and until then the item reaches out of the screen.
    bool isInItsCorner() {
        const QRect screen = other.geometry(other.root()).value_or(QRect());
        const QByteArray edge = GetParam();
        const bool isLeft = edge == "left" || alignment == u"left";
        const QPoint corner(isLeft ? screen.left() : screen.right(),
                            edge == "top" ? screen.top() : screen.bottom());
        constexpr int frame = 4; // of the tray
        const QRect at = place();
        return screen.contains(at) && at.adjusted(-frame, -frame, frame, frame).contains(corner);
    }

    /// Of the item, on the screen.
    QRect place() {
        std::vector<xcb_window_t> windows = other.stack();
        for (std::size_t index = 0; index < windows.size(); ++index) {
            const xcb_window_t window = windows[index];
            if (other.bytes(window, "WM_CLASS").startsWith("pavonel") && other.isViewable(window))
                return other.geometry(window).value_or(QRect());
            const XReply<xcb_query_tree_reply_t> tree(
                xcb_query_tree_reply(other.xcb(), xcb_query_tree(other.xcb(), window), nullptr));
            if (tree)
                windows.insert(windows.end(), xcb_query_tree_children(tree.get()),
                               xcb_query_tree_children(tree.get()) +
                                   xcb_query_tree_children_length(tree.get()));
        }
        return {};
    }

    static const QMenu *openMenu() {
        const auto widgets = QApplication::topLevelWidgets();
        for (const QWidget *widget : widgets) {
            if (const auto *menu = qobject_cast<const QMenu *>(widget); menu && menu->isVisible())
                return menu;
        }
        return nullptr;
    }
    void clickItem(int times) {
        const QPoint at = place().center();
        server().xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y()),
                          QStringLiteral("click"), QStringLiteral("--repeat"), QString::number(times),
                          QStringLiteral("--delay"), QStringLiteral("80"), QStringLiteral("1")});
    }

    /// Presses on the item and holds the button until the menu is there.
    void hold() {
        point(place().center());
        server().xdotool({QStringLiteral("mousedown"), QStringLiteral("1")});
        ASSERT_TRUE(waitUntil([] { return openMenu(); }));
    }
    static void release() { server().xdotool({QStringLiteral("mouseup"), QStringLiteral("1")}); }

    QString alignment = QStringLiteral("right");
    XClient other{server().display()};
};

INSTANTIATE_TEST_SUITE_P(Edges, EmbeddedAt, testing::Values("bottom", "left", "right", "top"),
                         [](const auto &edge) { return std::string(edge.param); });

TEST_P(EmbeddedAt, the_menu_opens_into_the_screen) {
    makeItem();
    startTrayer();
    clickItem(1);
    ASSERT_TRUE(waitUntil([] { return openMenu(); }));
    const QRect menu = openMenu()->geometry();
    EXPECT_FALSE(menu.intersects(place()));
    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(menu));
}

TEST_P(EmbeddedAt, a_double_click_chooses_nothing) {
    makeItem();
    startTrayer();
    clickItem(2);
    ASSERT_TRUE(waitUntil([&] { return menusMade > 0; }));
    EXPECT_FALSE(waitUntil([&] { return breaks > 0; }, 1000));
}

/// With a menu that is too high for the screen: its first column covers the item.
class EmbeddedWithoutRoomAt : public EmbeddedAt {
protected:
    EmbeddedWithoutRoomAt() {
        commands = 60;
        alignment = QStringLiteral("left");
    }
};

INSTANTIATE_TEST_SUITE_P(Edges, EmbeddedWithoutRoomAt, testing::Values("bottom"),
                         [](const auto &edge) { return std::string(edge.param); });

TEST_P(EmbeddedWithoutRoomAt, a_second_click_chooses_nothing_until_the_pointer_has_moved) {
    makeItem();
    startTrayer();
    const QPoint pointer = place().center();
    hold();
    const QMenu &menu = *openMenu();
    const auto window = static_cast<xcb_window_t>(menu.winId());
    ASSERT_TRUE(waitUntil([&] { return other.topAt(pointer) == window; }));
    ASSERT_TRUE(menu.actionAt(menu.mapFromGlobal(pointer))) << "there is nothing to choose";
    release();
    click();
    EXPECT_FALSE(waitUntil([&] { return breaks > 0 || !openMenu(); }, 1000));

    ASSERT_TRUE(marksWhatIsAt(pointer - QPoint(0, 100), menu));
    click();
    EXPECT_TRUE(waitUntil([&] { return breaks > 0; })) << "the menu chooses nothing at all";
}

TEST_P(EmbeddedAt, a_button_that_is_held_and_let_go_chooses_nothing_and_leaves_the_menu_open) {
    makeItem();
    startTrayer();
    for (const int milliseconds : {100, 1500}) { // less and more than what a double click may take
        hold();
        waitUntil([] { return false; }, milliseconds);
        release();
        EXPECT_FALSE(waitUntil([&] { return breaks > 0 || !openMenu(); }, 700)) << milliseconds;
        server().xdotool({QStringLiteral("key"), QStringLiteral("Escape")});
        ASSERT_TRUE(waitUntil([] { return !openMenu(); }));
    }
}

TEST_P(EmbeddedAt, a_button_that_is_held_on_the_way_to_a_command_chooses_it_when_let_go) {
    makeItem();
    startTrayer();
    hold();
    const QMenu &menu = *openMenu();
    const QPoint command = menu.mapToGlobal(menu.actionGeometry(menu.actions().at(1)).center());
    EXPECT_TRUE(marksWhatIsAt(command, menu));
    EXPECT_EQ(menu.activeAction(), menu.actions().at(1));
    release();
    EXPECT_TRUE(waitUntil([&] { return breaks == 1; }));
    EXPECT_TRUE(waitUntil([] { return !openMenu(); }));
}

TEST_P(EmbeddedAt, a_click_elsewhere_closes_the_menu) {
    makeItem();
    startTrayer();
    clickItem(1);
    ASSERT_TRUE(waitUntil([] { return openMenu(); }));
    EXPECT_TRUE(waitUntil([&] {
        server().xdotool({QStringLiteral("mousemove"), QStringLiteral("3000"), QStringLiteral("500"),
                          QStringLiteral("click"), QStringLiteral("1")});
        return !openMenu();
    }));
    EXPECT_EQ(breaks, 0);
}

namespace {

constexpr QRect wide(0, 0, 1000, 800);

struct Case {
    TrayPlace place;
    QPoint corner;
};

} // namespace

TEST(TrayMenu, stands_on_the_inner_side_of_the_panel_and_within_the_screen) {
    const QSize menu(200, 300);
    const Case cases[] = {
        {{{700, 0, 24, 24}, {0, 0, 1000, 24}}, {700, 24}},      // below a panel at the top
        {{{700, 776, 24, 24}, {0, 776, 1000, 24}}, {700, 476}}, // above one at the bottom
        {{{980, 776, 20, 24}, {0, 776, 1000, 24}}, {800, 476}}, // in the corner
        {{{0, 100, 40, 24}, {0, 0, 40, 800}}, {40, 100}},       // beside one at the left
        {{{960, 700, 40, 24}, {960, 0, 40, 800}}, {760, 500}},  // and at the right
    };
    for (const Case &each : cases)
        EXPECT_EQ(TrayMenu::corner(each.place, menu, wide), each.corner);
    EXPECT_EQ(TrayMenu::corner(cases[0].place, {1200, 900}, wide), QPoint(0, 0)) << "one that fits nowhere";
}

TEST_F(Tray, where_the_menu_lies_below_the_pointer_it_chooses_nothing_until_the_pointer_moves) {
    int chosen = 0;
    const MenuItem command{MenuItem::Kind::command, QStringLiteral("Quit"), {}, [&] { ++chosen; }, {}};
    TrayMenu menu(Menu(60, command)); // higher than the screen
    server().xdotool({QStringLiteral("mousemove"), QStringLiteral("20"), QStringLiteral("500")});
    menu.openAt({{10, 490, 20, 20}, {0, 490, 5760, 20}});
    ASSERT_TRUE(waitUntil([&] { return menu.isActiveWindow() || menu.isVisible(); }));
    click();
    EXPECT_FALSE(waitUntil([&] { return chosen > 0; }, 1000));

    ASSERT_TRUE(marksWhatIsAt({60, 400}, menu));
    click();
    EXPECT_TRUE(waitUntil([&] { return chosen > 0; }));
}

TEST_F(Tray, the_icon_follows_the_desktop_that_turns_dark_at_once) {
    appearance.current.dark = false;
    makeItem();
    const auto shade = [&] {
        const auto reply = bus->call([] {
            auto question = QDBusMessage::createMethodCall(
                QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid()),
                QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.freedesktop.DBus.Properties"),
                QStringLiteral("Get"));
            question << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("IconName");
            return question;
        }());
        return reply.arguments().value(0).value<QDBusVariant>().variant().toString();
    };
    ASSERT_TRUE(waitUntil([&] { return !shade().isEmpty(); }));
    const QString light = shade();
    appearance.change({true, false, {}});
    EXPECT_NE(shade(), light);
    EXPECT_TRUE(waitUntil([&] { return !shade().isEmpty(); }));
    EXPECT_NE(shade(), light);
}

TEST_F(Tray, a_tray_that_lies_about_its_size_does_not_end_the_connection) {
    makeItem();
    auto tray = std::make_optional<LyingTray>(server().display());
    ASSERT_TRUE(waitUntil([&] { return tray->takesAnItemIn(); }));
    EXPECT_TRUE(isShown(QRect(0, 0, 200, 200))) << "the item is drawn in a part of its place";
    tray.reset();
    EXPECT_TRUE(waitUntil([&] { return !item->limitation().isEmpty(); })) << "the tray went unnoticed";
}

} // namespace pavonel::test
