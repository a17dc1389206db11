#include "Platform/Linux/Tray/TrayStatusItem.h"
#include "X11/server.h"
#include "support/FakePlatform.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDeadlineTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

std::vector<QImage> icon() {
    QImage image(18, 18, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return {image};
}

bool isPicture(const QImage &image, QRect area) {
    for (int x = area.left(); x < area.right(); ++x) {
        for (int y = area.top(); y < area.bottom(); ++y) {
            if (image.pixel(x, y) != image.pixel(area.topLeft()))
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
        item = std::make_unique<TrayStatusItem>(*bus, icons.path(), appearance,
                                                X11Connection::open(server().display()));
        item->setMenu([this] {
            ++menusMade;
            Menu menu;
            menu.push_back({MenuItem::Kind::label, QStringLiteral("Micro break: 19:58"), {}, {}, {}});
            menu.push_back({MenuItem::Kind::command,
                            QStringLiteral("Take a micro break"),
                            {},
                            [this] { ++breaks; },
                            {}});
            return menu;
        });
        item->setIcon(QStringLiteral("menubar"), icon());
        item->setTitle(QStringLiteral("20m"));
    }

    /// A person's click on the item and, in the menu that shows, the first command by keyboard. On a busy
    /// machine a panel may miss a click or a key: like a person, try again.
    void chooseFirstCommand(QPoint place, const QString &button = QStringLiteral("1")) {
        ASSERT_TRUE(waitUntil([&] { return item->limitation().isEmpty(); })) << "no host";
        const QImage before = server().picture();
        bool opened = false;
        const QDeadlineTimer deadline(patience);
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
    static bool isMenuOpen(const QImage &before) {
        const QRect below(60, 36, 60, 12);
        return server().picture().copy(below) != before.copy(below);
    }

    void startLxqt() {
        writeFile(config("lxqt/panel.conf"),
                  "panels=panel1\n[panel1]\nalignment=-1\ndesktop=0\npanelSize=32\n"
                  "iconSize=22\nplugins=statusnotifier\nposition=Top\nwidth=100\n"
                  "width-percent=true\n[statusnotifier]\ntype=statusnotifier\n");
        host = server().launch(QStringLiteral("lxqt-panel"), {});
    }

    bool isShown(QRect place) {
        return waitUntil([&] { return isPicture(server().picture(), place); });
    }

    QTemporaryDir icons;
    FakeAppearance appearance;
    std::unique_ptr<QDBusConnection> bus;
    std::unique_ptr<ChildProcess> host;
    std::unique_ptr<TrayStatusItem> item;
    int menusMade = 0;
    int breaks = 0;
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

    const QImage before = server().picture().copy(label);
    item->setTitle(QStringLiteral("45s"));
    EXPECT_TRUE(waitUntil([&] { return server().picture().copy(label) != before; }))
        << "the label is not live";
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

} // namespace pavonel::test
