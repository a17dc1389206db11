#include "Platform/Linux/Bus/MutterIdleTime.h"

#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusPendingCall>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString monitorService = QStringLiteral("org.gnome.Mutter.IdleMonitor");
const QString monitorPath = QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core");

/// A user who stops and goes on when a test says so.
class Monitor : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Mutter.IdleMonitor")

public:
    explicit Monitor(const QDBusConnection &bus) : bus_(bus) {
        bus_.registerObject(monitorPath, this,
                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    }
    void appear() { EXPECT_TRUE(bus_.registerService(monitorService)); }
    void vanish() { EXPECT_TRUE(bus_.unregisterService(monitorService)); }

    int idleWatches = 0;
    int activeWatches = 0;
    qulonglong interval = 0;
    uint next = 1;

    Q_SIGNAL void WatchFired(uint watch);
    Q_SLOT uint AddIdleWatch(qulonglong milliseconds) {
        ++idleWatches;
        interval = milliseconds;
        return next++;
    }
    Q_SLOT uint AddUserActiveWatch() {
        ++activeWatches;
        return next++;
    }

private:
    QDBusConnection bus_;
};

class MutterIdleTimeTest : public testing::Test {
protected:
    ~MutterIdleTimeTest() override {
        idle.reset();
        for (const auto *name : {"shell", "pavonel", "stranger"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }
    QDBusConnection connection(const char *name) {
        return QDBusConnection::connectToBus(bus->address(), QString::fromLatin1(name));
    }
    void make() { idle = std::make_unique<MutterIdleTime>(connection("pavonel")); }
    bool works() {
        return waitUntil([this] { return idle->limitation().isEmpty(); });
    }
    /// With a monitor that has its watch.
    void makeWatched() {
        monitor.appear();
        make();
        ASSERT_TRUE(works());
    }
    bool becomesIdle() {
        return waitUntil([this] { return idle->idleSeconds() > 0; });
    }
    bool becomesActive() {
        return waitUntil([this] { return idle->idleSeconds() == 0; });
    }
    bool isWatchedForActivity(int times = 1) {
        return waitUntil([&] { return monitor.activeWatches == times; });
    }
    /// Until all that was said so far has been heard.
    void letSink() {
        for (int i = 0; i < 2; ++i) {
            const QDBusPendingCall ping = connection("pavonel").asyncCall(QDBusMessage::createMethodCall(
                monitorService, monitorPath, QStringLiteral("org.freedesktop.DBus.Peer"),
                QStringLiteral("Ping")));
            EXPECT_TRUE(waitUntil([&] { return ping.isFinished(); }));
        }
    }

    std::unique_ptr<MessageBus> bus = std::make_unique<MessageBus>();
    Monitor monitor{connection("shell")};
    std::unique_ptr<MutterIdleTime> idle;
};

} // namespace

TEST_F(MutterIdleTimeTest, counts_from_the_last_input_until_the_next) {
    makeWatched();
    EXPECT_EQ(idle->idleSeconds(), 0);
    Q_EMIT monitor.WatchFired(1);
    ASSERT_TRUE(becomesIdle());
    EXPECT_GE(idle->idleSeconds(), static_cast<Seconds>(monitor.interval) / 1000);
    const Seconds before = idle->idleSeconds();
    EXPECT_TRUE(waitUntil([&] { return idle->idleSeconds() > before; }));
    ASSERT_TRUE(isWatchedForActivity());
    letSink();
    Q_EMIT monitor.WatchFired(2);
    EXPECT_TRUE(becomesActive());
}

TEST_F(MutterIdleTimeTest, notices_every_time_that_the_user_leaves_with_one_watch) {
    makeWatched();
    for (uint spell = 1; spell <= 3; ++spell) {
        Q_EMIT monitor.WatchFired(1);
        ASSERT_TRUE(becomesIdle());
        ASSERT_TRUE(isWatchedForActivity(static_cast<int>(spell)));
        letSink();
        Q_EMIT monitor.WatchFired(spell + 1);
        ASSERT_TRUE(becomesActive());
    }
    EXPECT_EQ(monitor.idleWatches, 1);
}

TEST_F(MutterIdleTimeTest, says_so_while_there_is_no_monitor_and_finds_one_that_comes_late) {
    make();
    EXPECT_NE(idle->limitation(), QString());
    EXPECT_EQ(idle->idleSeconds(), 0);
    monitor.appear();
    EXPECT_TRUE(works());
}

TEST_F(MutterIdleTimeTest, a_shell_that_restarts_is_found_again_and_the_user_counts_as_active) {
    makeWatched();
    Q_EMIT monitor.WatchFired(1);
    ASSERT_TRUE(becomesIdle());
    ASSERT_TRUE(isWatchedForActivity());
    monitor.vanish();
    EXPECT_TRUE(becomesActive());
    EXPECT_NE(idle->limitation(), QString());
    monitor.appear();
    ASSERT_TRUE(works());
    Q_EMIT monitor.WatchFired(3);
    EXPECT_TRUE(becomesIdle());
}

TEST_F(MutterIdleTimeTest, watches_of_others_and_numbers_of_no_watch_mean_nothing) {
    makeWatched();
    for (const uint watch : {0u, 7u, 0xffffffffu})
        Q_EMIT monitor.WatchFired(watch);
    letSink();
    EXPECT_EQ(idle->idleSeconds(), 0);
}

TEST_F(MutterIdleTimeTest, nobody_but_the_monitor_is_believed) {
    makeWatched();
    auto lie = QDBusMessage::createSignal(monitorPath, monitorService, QStringLiteral("WatchFired"));
    lie << 1u;
    EXPECT_TRUE(connection("stranger").send(lie));
    letSink();
    EXPECT_EQ(idle->idleSeconds(), 0);
}

TEST_F(MutterIdleTimeTest, a_monitor_without_numbers_for_its_watches_counts_as_none) {
    monitor.next = 0;
    monitor.appear();
    make();
    EXPECT_TRUE(waitUntil([this] { return monitor.idleWatches == 1; }));
    letSink();
    Q_EMIT monitor.WatchFired(0);
    letSink();
    EXPECT_EQ(idle->idleSeconds(), 0);
    EXPECT_NE(idle->limitation(), QString());
}

TEST_F(MutterIdleTimeTest, a_monitor_that_says_idle_again_and_again_is_asked_once) {
    makeWatched();
    for (int i = 0; i < 100; ++i)
        Q_EMIT monitor.WatchFired(1);
    ASSERT_TRUE(becomesIdle());
    letSink();
    EXPECT_EQ(monitor.activeWatches, 1);
}

TEST_F(MutterIdleTimeTest, without_the_bus_nobody_counts_as_idle) {
    makeWatched();
    Q_EMIT monitor.WatchFired(1);
    ASSERT_TRUE(becomesIdle());
    bus.reset();
    EXPECT_TRUE(becomesActive());
    EXPECT_NE(idle->limitation(), QString());
}

} // namespace pavonel::test

#include "MutterIdleTimeTest.moc"
