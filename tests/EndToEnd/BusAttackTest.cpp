#include "EndToEnd/Desktop.h"
#include "support/MessageBus.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

/// What a host of the menu bar says has happened to an item.
struct MenuEvent {
    int id = 4711;
    QString event = QStringLiteral("clicked");
    QDBusVariant data{0};
    uint timestamp = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event) {
    argument.beginStructure();
    argument << event.id << event.event << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &) {
    return argument; // they are only sent
}

namespace {

using namespace std::chrono_literals;

/// bench/bus-cost holds 50 ms. Here is room for a busy machine's slow memory, and for the sanitizers' work.
#ifdef __SANITIZE_ADDRESS__
constexpr auto mostProcessorTime = 200ms;
#else
constexpr auto mostProcessorTime = 100ms;
#endif

constexpr int many = 200'000;
const QString ours = QStringLiteral("/org/pavonel/Pavonel");
const QString menu = QStringLiteral("/MenuBar");
const QString item = QStringLiteral("/StatusNotifierItem");

/// What somebody on the bus sends to the program.
struct Call {
    QString path;
    QString interface;
    QString method;
    QVariantList arguments;
};

std::vector<Call> absurdCalls() {
    const QString application = QStringLiteral("org.freedesktop.Application");
    const QString status = QStringLiteral("org.pavonel.Pavonel1");
    const QString dbusmenu = QStringLiteral("com.canonical.dbusmenu");
    const QString notifier = QStringLiteral("org.kde.StatusNotifierItem");
    const QString skip = QStringLiteral("skip");
    const QStringList names(many, QStringLiteral("label"));
    const QVariant numbers = QVariant::fromValue(QList<int>(many, 1));
    const QVariant events = QVariant::fromValue(QList<MenuEvent>(many));
    QVariantMap map;
    for (int i = 0; i < many; ++i)
        map.insert(QString::number(i), i);
    return {
        {ours, application, QStringLiteral("Activate"), {map}},
        {ours, application, QStringLiteral("Open"), {names, QVariantMap()}},
        {ours, application, QStringLiteral("ActivateAction"), {skip, QVariantList(many, 1), QVariantMap()}},
        {ours, status, QStringLiteral("Pause"), {60U, names}},
        {menu, dbusmenu, QStringLiteral("GetLayout"), {0, -1, names}},
        {menu, dbusmenu, QStringLiteral("GetGroupProperties"), {numbers, QStringList()}},
        {menu, dbusmenu, QStringLiteral("EventGroup"), {events}},
        {menu, dbusmenu, QStringLiteral("AboutToShowGroup"), {numbers}},
        {item, notifier, QStringLiteral("Activate"), {0, 0, names}},
        {item, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"), {names}},
    };
}

/// The program on a bus that another program speaks to it over.
class BusAttack : public testing::Test {
protected:
    BusAttack() {
        qDBusRegisterMetaType<QList<int>>();
        qDBusRegisterMetaType<MenuEvent>();
        qDBusRegisterMetaType<QList<MenuEvent>>();
        desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        desktop.startProgram();
        const Call introspect{
            item, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"), {}};
        EXPECT_TRUE(waitUntil([&] { return errorOf(introspect).isEmpty(); }));
        const uint process = attacker.interface()->servicePid(service);
        EXPECT_EQ(::clock_getcpuclockid(static_cast<pid_t>(process), &clock), 0);
    }
    ~BusAttack() override { QDBusConnection::disconnectFromBus(QStringLiteral("attacker")); }

    /// The name of the error with which it is answered; empty when it is taken.
    QString errorOf(const Call &call) {
        auto message = QDBusMessage::createMethodCall(service, call.path, call.interface, call.method);
        message.setArguments(call.arguments);
        return attacker.call(message).errorName();
    }

    std::chrono::nanoseconds processorTime() const {
        std::timespec time{};
        EXPECT_EQ(::clock_gettime(clock, &time), 0);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }

    Desktop desktop;
    const MessageBus bus;
    QDBusConnection attacker = QDBusConnection::connectToBus(bus.address(), QStringLiteral("attacker"));
    const QString service = QStringLiteral("org.pavonel.Pavonel");
    clockid_t clock{};
};

} // namespace

TEST_F(BusAttack, calls_of_absurd_sizes_are_refused_with_little_work) {
    for (const Call &call : absurdCalls()) {
        auto least = std::chrono::nanoseconds::max(); // of some, for other work comes in between
        for (int i = 0; i < 3; ++i) {
            const auto before = processorTime();
            EXPECT_NE(errorOf(call), QString()) << qPrintable(call.method);
            least = std::min(least, processorTime() - before);
        }
        EXPECT_LT(least, mostProcessorTime) << qPrintable(call.method);
        std::cerr << qPrintable(call.method) << ' ' << least / 1ms << '\n';
    }
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(BusAttack, a_menu_wished_for_beyond_every_screen_opens_on_one) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    const QRect screens = Desktop::screen(0) | Desktop::screen(2);
    for (const QPoint at : {QPoint(most, most), QPoint(least, least), QPoint(most, least)}) {
        const Call wish{item,
                        QStringLiteral("org.kde.StatusNotifierItem"),
                        QStringLiteral("ContextMenu"),
                        {at.x(), at.y()}};
        EXPECT_EQ(errorOf(wish), QString()) << at.x() << ' ' << at.y();
        EXPECT_TRUE(waitUntil([&] {
            return std::ranges::any_of(desktop.tree().visible(), [&](const SeenWindow &window) {
                return window.frame.width() > 100 && screens.contains(window.frame);
            });
        })) << "no menu";
    }
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

} // namespace pavonel::test

Q_DECLARE_METATYPE(pavonel::test::MenuEvent)
