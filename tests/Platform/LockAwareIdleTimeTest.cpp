#include "Platform/Linux/Bus/LockAwareIdleTime.h"

#include "support/FakePlatform.h"
#include "support/MessageBus.h"
#include "support/MockLogind.h"
#include "support/waitUntil.h"

#include <QDBusConnectionInterface>

#include <gtest/gtest.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

const QString login = QStringLiteral("org.freedesktop.login1");

/// A session bus with a desktop, and a system bus with a login manager that knows our session.
class LockAwareIdleTimeTest : public testing::Test {
protected:
    LockAwareIdleTimeTest() {
        qunsetenv("XDG_SESSION_ID");
        addSession("c7", ::getuid());
        addSession("c8", ::getuid() + 1);
        auto input = std::make_unique<FakeIdleTime>();
        keyboard = input.get();
        idle = std::make_unique<LockAwareIdleTime>(std::move(input), logind.connection(), desktop);
    }
    ~LockAwareIdleTimeTest() override {
        idle.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("desktop"));
        QDBusConnection::disconnectFromBus(QStringLiteral("saver"));
    }

    void tell(const QString &path, const QString &interface, const QString &method,
              const QVariantList &what) {
        auto message = QDBusMessage::createMethodCall(login, path, interface, method);
        message.setArguments(what);
        const QDBusMessage reply = logind.connection().call(message);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    }
    void addSession(const char *session, uint user) {
        tell(QStringLiteral("/org/freedesktop/login1"), QStringLiteral("org.freedesktop.DBus.Mock"),
             QStringLiteral("AddSession"),
             {QString::fromLatin1(session), QStringLiteral("seat0"), user, QStringLiteral("user%1").arg(user),
              true});
    }
    void setLockedHint(const char *session, bool locked) {
        tell(QStringLiteral("/org/freedesktop/login1/session/") + QString::fromLatin1(session),
             login + QStringLiteral(".Session"), QStringLiteral("SetLockedHint"), {locked});
    }
    /// As the screen saver of that kind.
    void announce(const char *interface, bool active) {
        EXPECT_TRUE(saver.registerService(QString::fromLatin1(interface)) ||
                    saver.interface()->serviceOwner(QString::fromLatin1(interface)).value() ==
                        saver.baseService());
        say(saver, interface, active);
    }
    static void say(QDBusConnection &speaker, const char *interface, bool active) {
        auto signal = QDBusMessage::createSignal(
            QStringLiteral("/ScreenSaver"), QString::fromLatin1(interface), QStringLiteral("ActiveChanged"));
        signal << active;
        EXPECT_TRUE(speaker.send(signal));
    }
    /// Until all that was said to the session bus so far has been heard.
    void letSink() {
        for (int i = 0; i < 2; ++i) {
            const QDBusPendingCall ping = desktop.asyncCall(QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
            EXPECT_TRUE(waitUntil([&] { return ping.isFinished(); }));
        }
    }
    bool countsUp() {
        return waitUntil([this] { return idle->idleSeconds() > 0.2; });
    }
    bool followsInput() {
        return waitUntil([this] { return idle->idleSeconds() == keyboard->seconds; });
    }

    MockLogind logind;
    std::unique_ptr<MessageBus> bus = std::make_unique<MessageBus>();
    QDBusConnection desktop = QDBusConnection::connectToBus(bus->address(), QStringLiteral("desktop"));
    QDBusConnection saver = QDBusConnection::connectToBus(bus->address(), QStringLiteral("saver"));
    FakeIdleTime *keyboard = nullptr;
    std::unique_ptr<LockAwareIdleTime> idle;
};

} // namespace

TEST_F(LockAwareIdleTimeTest, a_session_that_the_login_manager_says_is_locked_is_idle_since_then) {
    EXPECT_EQ(idle->idleSeconds(), 0);
    EXPECT_TRUE(waitUntil([this] {
        setLockedHint("c7", true); // again until our session has been found
        return idle->idleSeconds() > 0;
    }));
    EXPECT_TRUE(countsUp()) << "although the input is fresh";
    setLockedHint("c7", false);
    EXPECT_TRUE(followsInput());
}

TEST_F(LockAwareIdleTimeTest, a_session_that_was_locked_before_we_started_is_locked) {
    setLockedHint("c7", true);
    auto late =
        std::make_unique<LockAwareIdleTime>(std::make_unique<FakeIdleTime>(), logind.connection(), desktop);
    EXPECT_TRUE(waitUntil([&] { return late->idleSeconds() > 0.2; }));
}

TEST_F(LockAwareIdleTimeTest, the_lock_of_another_user_is_none) {
    setLockedHint("c8", true);
    waitUntil([] { return false; }, 300);
    EXPECT_EQ(idle->idleSeconds(), 0);
}

TEST_F(LockAwareIdleTimeTest, an_active_screen_saver_of_any_desktop_is_a_lock) {
    for (const char *interface :
         {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.xfce.ScreenSaver"}) {
        announce(interface, true);
        EXPECT_TRUE(countsUp()) << interface;
        announce(interface, false);
        EXPECT_TRUE(followsInput()) << interface;
    }
}

TEST_F(LockAwareIdleTimeTest, a_screen_saver_that_dies_is_no_lock_any_more) {
    announce("org.freedesktop.ScreenSaver", true);
    EXPECT_TRUE(countsUp());
    saver = QDBusConnection(QStringLiteral("none"));
    QDBusConnection::disconnectFromBus(QStringLiteral("saver"));
    EXPECT_TRUE(followsInput());
}

TEST_F(LockAwareIdleTimeTest, one_that_left_before_it_was_heard_holds_no_lock) {
    const QString name = QStringLiteral("liar");
    for (int i = 0; i < 20; ++i) {
        {
            QDBusConnection liar = QDBusConnection::connectToBus(bus->address(), name);
            EXPECT_TRUE(liar.registerService(QStringLiteral("org.gnome.ScreenSaver")));
            say(liar, "org.gnome.ScreenSaver", true);
        }
        QDBusConnection::disconnectFromBus(name);
    }
    letSink();
    EXPECT_TRUE(followsInput());
}

TEST_F(LockAwareIdleTimeTest, who_is_no_screen_saver_locks_nothing) {
    say(saver, "org.gnome.ScreenSaver", true);
    saver.interface()->registeredServiceNames(); // the bus has had it
    letSink();
    EXPECT_EQ(idle->idleSeconds(), 0);
}

TEST_F(LockAwareIdleTimeTest, the_end_of_a_lock_may_be_told_by_another_of_its_kind) {
    announce("org.gnome.ScreenSaver", true);
    EXPECT_TRUE(countsUp());
    say(desktop, "org.gnome.ScreenSaver", false);
    EXPECT_TRUE(followsInput());
}

TEST_F(LockAwareIdleTimeTest, a_login_manager_that_keeps_its_hint_outweighs_a_screen_saver) {
    EXPECT_TRUE(waitUntil([this] {
        setLockedHint("c7", true);
        return idle->idleSeconds() > 0;
    }));
    announce("org.gnome.ScreenSaver", true);
    letSink();
    setLockedHint("c7", false);
    EXPECT_TRUE(followsInput());
}

TEST_F(LockAwareIdleTimeTest, a_session_bus_that_is_lost_holds_no_lock) {
    announce("org.freedesktop.ScreenSaver", true);
    EXPECT_TRUE(countsUp());
    bus.reset();
    EXPECT_TRUE(followsInput());
}

TEST_F(LockAwareIdleTimeTest, the_session_that_the_environment_names_is_ours_among_several) {
    addSession("c9", ::getuid());
    qputenv("XDG_SESSION_ID", "c9");
    setLockedHint("c9", true);
    LockAwareIdleTime named(std::make_unique<FakeIdleTime>(), logind.connection(), desktop);
    EXPECT_TRUE(waitUntil([&] { return named.idleSeconds() > 0.2; }));
    setLockedHint("c9", false);
    setLockedHint("c7", true);
    EXPECT_TRUE(waitUntil([&] { return named.idleSeconds() == 0; }));
    EXPECT_TRUE(countsUp()) << "for one that was started without that name the other is its own";
    EXPECT_EQ(named.idleSeconds(), 0);
}

TEST_F(LockAwareIdleTimeTest, a_login_manager_that_ends_holds_no_lock) {
    EXPECT_TRUE(waitUntil([this] {
        setLockedHint("c7", true);
        return idle->idleSeconds() > 0;
    }));
    logind.stop();
    EXPECT_TRUE(followsInput());
}

TEST_F(LockAwareIdleTimeTest, a_longer_spell_without_input_outweighs_a_shorter_lock) {
    keyboard->seconds = 900;
    announce("org.freedesktop.ScreenSaver", true);
    waitUntil([] { return false; }, 300);
    EXPECT_EQ(idle->idleSeconds(), 900);
}

TEST(LockAwareIdleTime, without_any_bus_the_input_decides) {
    auto input = std::make_unique<FakeIdleTime>();
    input->seconds = 42;
    const QDBusConnection none(QStringLiteral("no such bus"));
    LockAwareIdleTime idle(std::move(input), none, none);
    EXPECT_EQ(idle.idleSeconds(), 42);
}

} // namespace pavonel::test
