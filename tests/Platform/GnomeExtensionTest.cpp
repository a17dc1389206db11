#include "Platform/Linux/Gnome/GnomeExtension.h"

#include "Platform/Linux/Gnome/GnomeHotKeys.h"
#include "Platform/Linux/Gnome/GnomePointer.h"
#include "Platform/Linux/Gnome/GnomeWindows.h"
#include "Platform/Qt/QtMainLoop.h"
#include "support/MessageBus.h"
#include "support/keys.h"
#include "support/waitUntil.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

struct ReportedFrame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};
struct ReportedFront {
    uint process = 0;
    QString windowClass;
    QString windowInstance;
    ReportedFrame frame;
    bool fullscreen = false;
};
struct ReportedPoint {
    int x = 0;
    int y = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const ReportedFrame &frame) {
    argument.beginStructure();
    argument << frame.x << frame.y << frame.width << frame.height;
    argument.endStructure();
    return argument;
}
const QDBusArgument &operator>>(const QDBusArgument &argument, ReportedFrame &frame) {
    argument.beginStructure();
    argument >> frame.x >> frame.y >> frame.width >> frame.height;
    argument.endStructure();
    return argument;
}
QDBusArgument &operator<<(QDBusArgument &argument, const ReportedFront &front) {
    argument.beginStructure();
    argument << front.process << front.windowClass << front.windowInstance << front.frame << front.fullscreen;
    argument.endStructure();
    return argument;
}
const QDBusArgument &operator>>(const QDBusArgument &argument, ReportedFront &front) {
    argument.beginStructure();
    argument >> front.process >> front.windowClass >> front.windowInstance >> front.frame >> front.fullscreen;
    argument.endStructure();
    return argument;
}
QDBusArgument &operator<<(QDBusArgument &argument, const ReportedPoint &point) {
    argument.beginStructure();
    argument << point.x << point.y;
    argument.endStructure();
    return argument;
}
const QDBusArgument &operator>>(const QDBusArgument &argument, ReportedPoint &point) {
    argument.beginStructure();
    argument >> point.x >> point.y;
    argument.endStructure();
    return argument;
}

} // namespace pavonel::test
Q_DECLARE_METATYPE(pavonel::test::ReportedFrame)
Q_DECLARE_METATYPE(pavonel::test::ReportedFront)
Q_DECLARE_METATYPE(pavonel::test::ReportedPoint)

namespace pavonel::test {

namespace {

const QString name = QStringLiteral("org.pavonel.Shell");
const QString path = QStringLiteral("/org/pavonel/Shell");

/// The extension's side of the bus.
class Shell : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.pavonel.Shell")

public:
    explicit Shell(const QDBusConnection &bus) : bus_(bus) {
        qDBusRegisterMetaType<ReportedFrame>();
        qDBusRegisterMetaType<ReportedFront>();
        qDBusRegisterMetaType<ReportedPoint>();
        bus_.registerObject(path, this, QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    }
    void appear() { EXPECT_TRUE(bus_.registerService(name)); }
    void vanish() { EXPECT_TRUE(bus_.unregisterService(name)); }

    ReportedFront front;
    ReportedPoint pointer;
    QStringList grabs;
    QList<uint> ungrabs;
    QString taken;

    Q_SIGNAL void FrontChanged(const pavonel::test::ReportedFront &front);
    Q_SIGNAL void Pressed(uint action);
    Q_SLOT pavonel::test::ReportedFront Front() { return front; }
    Q_SLOT pavonel::test::ReportedPoint Pointer() { return pointer; }
    Q_SLOT uint Grab(const QString &keys) {
        grabs.append(keys);
        return keys == taken ? 0 : 100 + static_cast<uint>(grabs.size());
    }
    Q_SLOT void Ungrab(uint action) { ungrabs.append(action); }

private:
    QDBusConnection bus_;
};

class GnomeExtensionTest : public testing::Test {
protected:
    GnomeExtensionTest() { qputenv("GSETTINGS_BACKEND", "memory"); } // not the user's settings
    ~GnomeExtensionTest() override {
        for (const auto *each : {"shell", "pavonel"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(each));
    }
    QDBusConnection connection(const char *as) {
        return QDBusConnection::connectToBus(bus.address(), QString::fromLatin1(as));
    }
    bool isThere(bool there = true) {
        return waitUntil([&] { return extension->isPresent() == there; });
    }

    QtMainLoop loop;
    MessageBus bus;
    Shell shell{connection("shell")};
    std::shared_ptr<GnomeExtension> extension = std::make_shared<GnomeExtension>(connection("pavonel"));
};

} // namespace

TEST_F(GnomeExtensionTest, tells_the_window_in_front_when_it_comes_and_when_it_changes) {
    GnomeWindows windows(extension);
    EXPECT_FALSE(windows.isTelling());
    shell.front = {77, QStringLiteral("Player"), QStringLiteral("player"), {0, 0, 640, 480}, false};
    shell.appear();
    ASSERT_TRUE(waitUntil([&] { return windows.front().has_value(); }));
    EXPECT_EQ(*windows.front(), (FrontWindow{0, 77, QStringLiteral("Player"), QStringLiteral("player")}));
    EXPECT_TRUE(windows.fullscreen().empty());
    shell.front.fullscreen = true;
    Q_EMIT shell.FrontChanged(shell.front);
    ASSERT_TRUE(waitUntil([&] { return windows.fullscreen().size() == 1; }));
    EXPECT_EQ(windows.fullscreen().front().owner, 77);
    Q_EMIT shell.FrontChanged({});
    EXPECT_TRUE(waitUntil([&] { return !windows.front(); }));
}

TEST_F(GnomeExtensionTest, tells_nothing_once_it_is_gone) {
    shell.front = {77, QStringLiteral("Player"), {}, {0, 0, 640, 480}, true};
    shell.appear();
    ASSERT_TRUE(waitUntil([&] { return extension->front().has_value(); }));
    shell.vanish();
    EXPECT_TRUE(isThere(false));
    EXPECT_FALSE(extension->front());
    shell.appear();
    EXPECT_TRUE(waitUntil([&] { return extension->front().has_value(); }));
}

TEST_F(GnomeExtensionTest, is_not_believed_what_no_desktop_has) {
    shell.front = {77, QStringLiteral("Player"), {}, {0, 0, 640, 480}, false};
    shell.appear();
    ASSERT_TRUE(waitUntil([&] { return extension->front().has_value(); })); // it is asked for once
    constexpr int smallest = std::numeric_limits<int>::min();
    constexpr int largest = std::numeric_limits<int>::max();
    const ReportedFront lies[] = {
        {77, {}, {}, {0, 0, 0, 0}, true},
        {77, {}, {}, {largest, largest, largest, largest}, true},
        {77, {}, {}, {smallest, 0, 640, 480}, true},
        {0xffffffffu, {}, {}, {0, 0, 640, 480}, true},
        {77, QString(100'000, u'x'), {}, {0, 0, 640, 480}, true},
    };
    for (const ReportedFront &lie : lies) {
        Q_EMIT shell.FrontChanged(shell.front);
        ASSERT_TRUE(waitUntil([&] { return extension->front().has_value(); }));
        Q_EMIT shell.FrontChanged(lie);
        EXPECT_TRUE(waitUntil([&] { return !extension->front(); }));
    }
}

TEST_F(GnomeExtensionTest, tells_the_pointer_to_whoever_asks_again) {
    GnomePointer pointer(extension);
    EXPECT_FALSE(pointer.position());
    EXPECT_NE(pointer.limitation(), QString());
    shell.pointer = {31, 17};
    shell.appear();
    ASSERT_TRUE(isThere());
    EXPECT_EQ(pointer.limitation(), QString());
    EXPECT_TRUE(waitUntil([&] { return pointer.position() == QPointF(31, 17); }));
    shell.pointer = {std::numeric_limits<int>::min(), 0};
    EXPECT_TRUE(waitUntil([&] { return !pointer.position(); }));
}

TEST_F(GnomeExtensionTest, takes_shortcuts_whenever_it_comes_and_tells_their_presses) {
    GnomeHotKeys keys(connection("pavonel"), extension, loop);
    std::vector<std::uint32_t> pressed;
    keys.setPressHandler([&](std::uint32_t identifier) { pressed.push_back(identifier); });
    const auto registration = keys.registerKey(keyB, controlOptionCommand, 7);
    ASSERT_TRUE(registration);
    for (uint time = 1; time <= 2; ++time) {
        shell.appear();
        ASSERT_TRUE(waitUntil([&] { return shell.grabs.size() == static_cast<int>(time); }));
        EXPECT_EQ(shell.grabs.back().toStdString(), "<Control><Alt><Super>b");
        EXPECT_EQ(keys.limitation(), QString());
        EXPECT_TRUE(waitUntil([&] {
            Q_EMIT shell.Pressed(100 + time);
            return pressed.size() >= time && pressed.back() == 7;
        }));
        shell.vanish();
        ASSERT_TRUE(isThere(false));
    }
}

TEST_F(GnomeExtensionTest, gives_shortcuts_back) {
    GnomeHotKeys keys(connection("pavonel"), extension, loop);
    shell.appear();
    ASSERT_TRUE(isThere());
    auto registration = keys.registerKey(escape, 0, 10);
    ASSERT_TRUE(waitUntil([&] { return shell.grabs.size() == 1; }));
    EXPECT_EQ(shell.grabs.front().toStdString(), "Escape");
    registration.reset(); // perhaps before the answer
    EXPECT_TRUE(waitUntil([&] { return shell.ungrabs == QList<uint>{101}; }));
}

TEST_F(GnomeExtensionTest, says_which_shortcut_somebody_else_has) {
    GnomeHotKeys keys(connection("pavonel"), extension, loop);
    shell.taken = QStringLiteral("<Control><Alt><Super>b");
    shell.appear();
    ASSERT_TRUE(isThere());
    const auto registration = keys.registerKey(keyB, controlOptionCommand, 7);
    EXPECT_TRUE(waitUntil([&] { return keys.limitation().contains(QStringLiteral("Ctrl+Alt+Super+B")); }));
}

TEST_F(GnomeExtensionTest, a_key_without_a_name_cannot_be_had) {
    GnomeHotKeys keys(connection("pavonel"), extension, loop);
    EXPECT_FALSE(keys.registerKey(0xffff, controlOptionCommand, 7));
}

} // namespace pavonel::test

#include "GnomeExtensionTest.moc"
