#include "Platform/Linux/Bus/KGlobalAccelHotKeys.h"

#include "support/MessageBus.h"
#include "support/keys.h"
#include "support/waitUntil.h"

#include <QDBusMessage>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr int controlAltMetaB = 0x1C000042;
const auto serviceName = QStringLiteral("org.kde.kglobalaccel");

} // namespace

/// It writes down what it is asked.
class FakeKGlobalAccel final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.KGlobalAccel")

public:
    QStringList asked;
    QList<int> wanted;
    std::map<QString, int> given; ///< Instead of what was asked for, by action.

public Q_SLOTS:
    void doRegister(const QStringList &action) {
        asked.append(QStringLiteral("register ") + action.join(u'|'));
    }
    void setInactive(const QStringList &action) {
        asked.append(QStringLiteral("inactive ") + action.value(1));
    }
    QList<int> setShortcut(const QStringList &action, const QList<int> &keys, uint flags) {
        asked.append(QStringLiteral("set %1 %2").arg(action.value(1)).arg(flags));
        wanted = keys;
        const auto found = given.find(action.value(1));
        return found == given.end() ? keys : QList<int>{found->second};
    }
};

class FakeComponent final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kglobalaccel.Component")

public:
    int cleanings = 0;

public Q_SLOTS:
    bool cleanUp() { return ++cleanings > 0; }

Q_SIGNALS:
    void globalShortcutPressed(const QString &component, const QString &action, qlonglong time);
};

namespace {

class KGlobalAccelHotKeysTest : public testing::Test {
protected:
    KGlobalAccelHotKeysTest() { startPlasma(); }
    ~KGlobalAccelHotKeysTest() override {
        for (const char *name : {"pavonel", "plasma", "stranger"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }
    QDBusConnection connectTo(const char *name) {
        return QDBusConnection::connectToBus(bus.address(), QString::fromLatin1(name));
    }
    void startPlasma() {
        constexpr auto all = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals;
        plasma.registerObject(QStringLiteral("/kglobalaccel"), &accel, all);
        plasma.registerObject(QStringLiteral("/component/pavonel"), &component, all);
        EXPECT_TRUE(plasma.registerService(serviceName));
        plasma.registerService(QStringLiteral("org.kde.KWin"));
    }
    /// Its calls come while the main loop runs, so ours must not wait for it.
    void makeService() {
        service = makeHotKeyService(KGlobalAccelHotKeys::make(ours));
        service->setPressHandler([this](std::uint32_t identifier) { pressed.push_back(identifier); });
    }
    static bool becomesHeld(const HotKeyRegistration &key, bool held = true) {
        return waitUntil([&] { return key.isHeld() == held; });
    }
    bool isAsked(const char *question, int times = 1) {
        return waitUntil([&] { return accel.asked.count(QString::fromLatin1(question)) == times; });
    }

    MessageBus bus;
    QDBusConnection plasma = connectTo("plasma");
    QDBusConnection ours = connectTo("pavonel");
    FakeKGlobalAccel accel;
    FakeComponent component;
    std::unique_ptr<HotKeyService> service;
    std::vector<std::uint32_t> pressed;
};

TEST_F(KGlobalAccelHotKeysTest, is_there_only_with_a_kwin_that_hears_keys) {
    plasma.unregisterService(QStringLiteral("org.kde.KWin"));
    EXPECT_EQ(KGlobalAccelHotKeys::make(ours), nullptr);
    EXPECT_EQ(KGlobalAccelHotKeys::make(QDBusConnection(QStringLiteral("none"))), nullptr);
}

TEST_F(KGlobalAccelHotKeysTest, a_key_is_held_once_it_was_given_and_inactive_when_it_is_given_back) {
    makeService();
    auto key = service->registerKey(keyB, controlOptionCommand, 1);
    ASSERT_NE(key, nullptr);
    EXPECT_FALSE(key->isHeld());
    EXPECT_TRUE(becomesHeld(*key));
    EXPECT_EQ(accel.asked,
              (QStringList{QStringLiteral("register pavonel|take-micro-break|Pavonel|Take a micro break"),
                           QStringLiteral("set take-micro-break 2")}));
    EXPECT_EQ(accel.wanted, QList<int>{controlAltMetaB});
    key.reset();
    EXPECT_TRUE(isAsked("inactive take-micro-break"));
}

TEST_F(KGlobalAccelHotKeysTest, a_key_of_somebody_else_is_not_held_and_one_that_the_user_chose_is) {
    accel.given = {{QStringLiteral("take-micro-break"), 0}, {QStringLiteral("skip"), Qt::Key_F5}};
    makeService();
    const auto taken = service->registerKey(keyB, controlOptionCommand, 1);
    const auto chosen = service->registerKey(keyS, controlOptionCommand, 2);
    EXPECT_TRUE(becomesHeld(*chosen));
    EXPECT_FALSE(taken->isHeld());
}

TEST_F(KGlobalAccelHotKeysTest, takes_presses_from_the_service_alone) {
    makeService();
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    EXPECT_TRUE(becomesHeld(*key));
    QDBusConnection stranger = connectTo("stranger");
    auto forged = QDBusMessage::createSignal(QStringLiteral("/component/pavonel"),
                                             QStringLiteral("org.kde.kglobalaccel.Component"),
                                             QStringLiteral("globalShortcutPressed"));
    forged << QStringLiteral("pavonel") << QStringLiteral("take-micro-break") << qlonglong{1};
    stranger.send(forged);
    Q_EMIT component.globalShortcutPressed(QStringLiteral("other"), QStringLiteral("take-micro-break"), 1);
    Q_EMIT component.globalShortcutPressed(QStringLiteral("pavonel"), QStringLiteral("skip"), 1);
    Q_EMIT component.globalShortcutPressed(QStringLiteral("pavonel"), QStringLiteral("take-micro-break"), 1);
    EXPECT_TRUE(waitUntil([&] { return !pressed.empty(); }));
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{1}));
}

TEST_F(KGlobalAccelHotKeysTest, asks_again_when_the_service_was_restarted) {
    makeService();
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    EXPECT_TRUE(becomesHeld(*key));
    plasma.unregisterService(serviceName);
    EXPECT_TRUE(becomesHeld(*key, false));
    startPlasma();
    EXPECT_TRUE(becomesHeld(*key));
    EXPECT_TRUE(isAsked("set take-micro-break 2", 2));
}

TEST_F(KGlobalAccelHotKeysTest, forgets_its_keys_when_none_is_wanted) {
    makeService();
    EXPECT_TRUE(waitUntil([&] { return component.cleanings == 1; }));
    EXPECT_EQ(accel.asked, QStringList());
}

TEST_F(KGlobalAccelHotKeysTest, keeps_its_keys_when_one_is_wanted) {
    makeService();
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    EXPECT_TRUE(becomesHeld(*key));
    EXPECT_EQ(component.cleanings, 0);
}

TEST_F(KGlobalAccelHotKeysTest, refuses_keys_without_a_modifier) {
    makeService();
    EXPECT_EQ(service->registerKey(escape, 0, 10), nullptr);
}

} // namespace

} // namespace pavonel::test

#include "KGlobalAccelHotKeysTest.moc"
