#include "Platform/Linux/Bus/BusNotifications.h"

#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

const auto name = u"org.freedesktop.Notifications"_s;

/// Shows notifications, or would.
class Desktop : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Notice {
        QString title;
        QString text;
        QStringList buttons;
    };
    std::vector<Notice> notices;
    QList<uint> withdrawn;

    Q_SIGNAL void ActionInvoked(uint number, const QString &key);
    Q_SLOT uint Notify(const QString &, uint, const QString &, const QString &title, const QString &text,
                       const QStringList &buttons, const QVariantMap &, int) {
        notices.push_back({title, text, buttons});
        return static_cast<uint>(notices.size());
    }
    Q_SLOT void CloseNotification(uint number) { withdrawn.append(number); }
};

class BusNotificationsTest : public testing::Test {
protected:
    BusNotificationsTest() {
        QDBusConnection there = connection("desktop");
        there.registerObject(u"/org/freedesktop/Notifications"_s, &desktop,
                             QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
        EXPECT_TRUE(there.registerService(name));
    }
    ~BusNotificationsTest() override {
        for (const auto *each : {"desktop", "pavonel", "stranger"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(each));
    }
    QDBusConnection connection(const char *as) {
        return QDBusConnection::connectToBus(bus.address(), QString::fromLatin1(as));
    }
    bool areShown(std::size_t count) {
        return waitUntil([&] { return desktop.notices.size() == count; });
    }

    MessageBus bus;
    Desktop desktop;
    BusNotifications notifications{connection("pavonel")};
};

} // namespace

TEST_F(BusNotificationsTest, are_shown_with_their_buttons_and_taken_away) {
    auto shown = notifications.show(
        {u"Micro break coming up"_s, u"Eyes & ears <b>"_s, {{u"Start"_s, [] {}}, {u"Skip"_s, [] {}}}});
    ASSERT_TRUE(areShown(1));
    EXPECT_EQ(desktop.notices.front().title, u"Micro break coming up"_s);
    EXPECT_EQ(desktop.notices.front().text, u"Eyes &amp; ears &lt;b&gt;"_s);
    EXPECT_EQ(desktop.notices.front().buttons, (QStringList{u"0"_s, u"Start"_s, u"1"_s, u"Skip"_s}));
    shown.reset(); // perhaps before its number is known
    EXPECT_TRUE(waitUntil([&] { return desktop.withdrawn == QList<uint>{1}; }));
}

TEST_F(BusNotificationsTest, do_what_is_pressed_and_may_be_taken_away_by_it) {
    std::unique_ptr<Notifications::Shown> shown;
    QStringList pressed;
    const auto button = [&](const QString &label) {
        return Notifications::Button{label, [&, label] {
                                         shown.reset();
                                         pressed.append(label);
                                     }};
    };
    shown = notifications.show({u"Title"_s, {}, {button(u"A"_s), button(u"B"_s)}});
    ASSERT_TRUE(areShown(1));
    for (const auto &nonsense : {u"2"_s, u"-1"_s, u"default"_s, QString()})
        Q_EMIT desktop.ActionInvoked(1, nonsense);
    Q_EMIT desktop.ActionInvoked(77, u"0"_s);
    EXPECT_TRUE(waitUntil([&] {
        Q_EMIT desktop.ActionInvoked(1, u"1"_s);
        return !pressed.isEmpty();
    }));
    EXPECT_EQ(pressed, QStringList{u"B"_s});
    EXPECT_TRUE(waitUntil([&] { return desktop.withdrawn == QList<uint>{1}; }));
}

TEST_F(BusNotificationsTest, heed_nobody_but_the_desktop_that_shows_them) {
    bool isPressed = false;
    const auto shown = notifications.show({u"Title"_s, {}, {{u"A"_s, [&] { isPressed = true; }}}});
    ASSERT_TRUE(areShown(1));
    QDBusConnection stranger = connection("stranger");
    auto signal = QDBusMessage::createSignal(u"/org/freedesktop/Notifications"_s, name, u"ActionInvoked"_s);
    signal << 1U << u"0"_s;
    EXPECT_TRUE(stranger.send(signal));
    ASSERT_TRUE(connection("desktop").unregisterService(name));
    Desktop other;
    ASSERT_TRUE(stranger.registerObject(u"/org/freedesktop/Notifications"_s, &other,
                                        QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(stranger.registerService(name));
    const auto later = notifications.show({u"Later"_s});
    EXPECT_TRUE(waitUntil([&] { return other.notices.size() == 1; }));
    EXPECT_FALSE(isPressed);
}

TEST_F(BusNotificationsTest, are_nothing_where_nobody_shows_them) {
    ASSERT_TRUE(connection("desktop").unregisterService(name));
    auto shown = notifications.show({u"Title"_s});
    shown.reset();
    shown = notifications.show({u"Title"_s});
    ASSERT_TRUE(connection("desktop").registerService(name));
    const auto second = notifications.show({u"Second"_s});
    EXPECT_TRUE(
        waitUntil([&] { return !desktop.notices.empty() && desktop.notices.back().title == u"Second"_s; }));
}

} // namespace pavonel::test

#include "BusNotificationsTest.moc"
