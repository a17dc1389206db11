#include "Platform/Linux/Bus/PortalHotKeys.h"

#include "support/MessageBus.h"
#include "support/keys.h"
#include "support/waitUntil.h"

#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const auto serviceName = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto sessionPath = QStringLiteral("/org/freedesktop/portal/desktop/session/x/pavonel");

} // namespace

/// A portal whose user decides when the test says so.
class FakePortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.GlobalShortcuts")
    Q_PROPERTY(uint version READ version)

public:
    uint version() const { return 1; }

    std::map<QString, QString> triggers; ///< Wanted, by name.
    int sessions = 0;
    QDBusMessage bindCall;

    QString requestOf(const QVariantMap &options) const {
        QString sender = message().service().mid(1);
        return QStringLiteral("%1/request/%2/%3")
            .arg(portalPath, sender.replace(u'.', u'_'), options[QStringLiteral("handle_token")].toString());
    }
    void respond(QDBusConnection bus, const QString &to, uint code, const QVariantMap &results) {
        auto signal = QDBusMessage::createSignal(to, QStringLiteral("org.freedesktop.portal.Request"),
                                                 QStringLiteral("Response"));
        signal << code << results;
        bus.send(signal);
    }
    QString bindRequest;

public Q_SLOTS:
    QDBusObjectPath CreateSession(const QVariantMap &options) {
        ++sessions;
        const QString path = requestOf(options);
        respond(connection(), path, 0, {{QStringLiteral("session_handle"), sessionPath}});
        return QDBusObjectPath(path);
    }
    QDBusObjectPath BindShortcuts(const QDBusMessage &call) {
        const auto list = call.arguments().value(1).value<QDBusArgument>();
        for (list.beginArray(); !list.atEnd();) {
            QString name;
            QVariantMap properties;
            list.beginStructure();
            list >> name >> properties;
            list.endStructure();
            triggers[name] = properties[QStringLiteral("preferred_trigger")].toString();
        }
        list.endArray();
        bindRequest = requestOf(qdbus_cast<QVariantMap>(call.arguments().value(3)));
        return QDBusObjectPath(bindRequest);
    }
};

class FakeSession final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Session")

public:
    int closed = 0;

public Q_SLOTS:
    void Close() { ++closed; }
};

/// An answer's a(sa{sv}).
struct Given {
    QString name;
};
QDBusArgument &operator<<(QDBusArgument &to, const Given &given) {
    to.beginStructure();
    to << given.name << QVariantMap();
    to.endStructure();
    return to;
}
const QDBusArgument &operator>>(const QDBusArgument &from, Given &given) {
    QVariantMap properties;
    from.beginStructure();
    from >> given.name >> properties;
    from.endStructure();
    return from;
}

namespace {

class PortalHotKeysTest : public testing::Test {
protected:
    PortalHotKeysTest() {
        qDBusRegisterMetaType<Given>();
        qDBusRegisterMetaType<QList<Given>>();
        service->setPressHandler([this](std::uint32_t identifier) { pressed.push_back(identifier); });
    }
    ~PortalHotKeysTest() override {
        for (const char *name : {"pavonel", "portal", "stranger"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }
    QDBusConnection connectTo(const char *name) {
        return QDBusConnection::connectToBus(bus.address(), QString::fromLatin1(name));
    }
    void startPortal() {
        constexpr auto all = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties;
        portalBus.registerObject(portalPath, &portal, all);
        portalBus.registerObject(sessionPath, &session, all);
        EXPECT_TRUE(portalBus.registerService(serviceName));
    }
    bool isAsked() {
        return waitUntil([&] { return !portal.bindRequest.isEmpty(); });
    }
    void allow(const QList<Given> &given) {
        portal.respond(portalBus, portal.bindRequest, 0,
                       {{QStringLiteral("shortcuts"), QVariant::fromValue(given)}});
    }
    static void activate(QDBusConnection from, const QString &session, const char *name) {
        auto signal =
            QDBusMessage::createSignal(portalPath, QStringLiteral("org.freedesktop.portal.GlobalShortcuts"),
                                       QStringLiteral("Activated"));
        signal << QVariant::fromValue(QDBusObjectPath(session)) << QString::fromLatin1(name) << qulonglong{1}
               << QVariantMap();
        from.send(signal);
    }
    static bool becomesHeld(const HotKeyRegistration &key, bool held = true) {
        return waitUntil([&] { return key.isHeld() == held; });
    }

    MessageBus bus;
    QDBusConnection portalBus = connectTo("portal");
    QDBusConnection ours = connectTo("pavonel");
    FakePortal portal;
    FakeSession session;
    std::unique_ptr<HotKeyService> service = makeHotKeyService(std::make_shared<PortalHotKeys>(ours));
    std::vector<std::uint32_t> pressed;
};

TEST_F(PortalHotKeysTest, all_keys_are_one_question_and_held_as_the_user_answers) {
    startPortal();
    const auto allowed = service->registerKey(keyB, controlOptionCommand, 1);
    const auto refused = service->registerKey(keyS, controlOptionCommand, 2);
    ASSERT_TRUE(isAsked());
    EXPECT_EQ(portal.sessions, 1);
    EXPECT_EQ(portal.triggers, (std::map<QString, QString>{
                                   {QStringLiteral("take-micro-break"), QStringLiteral("CTRL+ALT+LOGO+b")},
                                   {QStringLiteral("skip"), QStringLiteral("CTRL+ALT+LOGO+s")}}));
    EXPECT_EQ(service->limitation(), QString());
    EXPECT_FALSE(allowed->isHeld());
    allow({{QStringLiteral("take-micro-break")}});
    EXPECT_TRUE(becomesHeld(*allowed));
    EXPECT_FALSE(refused->isHeld());
}

TEST_F(PortalHotKeysTest, the_session_ends_with_the_last_key) {
    startPortal();
    auto first = service->registerKey(keyB, controlOptionCommand, 1);
    auto second = service->registerKey(keyS, controlOptionCommand, 2);
    ASSERT_TRUE(isAsked());
    allow({{QStringLiteral("take-micro-break")}, {QStringLiteral("skip")}});
    EXPECT_TRUE(becomesHeld(*second));
    first.reset();
    EXPECT_TRUE(second->isHeld());
    second.reset();
    EXPECT_TRUE(waitUntil([&] { return session.closed == 1; }));
}

TEST_F(PortalHotKeysTest, takes_presses_of_its_own_session_from_the_portal_alone) {
    startPortal();
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    ASSERT_TRUE(isAsked());
    allow({{QStringLiteral("take-micro-break")}});
    EXPECT_TRUE(becomesHeld(*key));
    activate(connectTo("stranger"), sessionPath, "take-micro-break");
    activate(portalBus, sessionPath + u'2', "take-micro-break");
    activate(portalBus, sessionPath, "skip");
    activate(portalBus, sessionPath, "take-micro-break");
    EXPECT_TRUE(waitUntil([&] { return !pressed.empty(); }));
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{1}));
}

TEST_F(PortalHotKeysTest, a_user_who_says_no_or_an_answer_without_sense_leaves_no_key) {
    startPortal();
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    ASSERT_TRUE(isAsked());
    portal.respond(portalBus, portal.bindRequest, 1, {});
    portal.respond(portalBus, portal.bindRequest, 0, {{QStringLiteral("shortcuts"), 7}});
    activate(portalBus, sessionPath, "take-micro-break"); // comes after those
    EXPECT_TRUE(waitUntil([&] { return !pressed.empty(); }));
    EXPECT_FALSE(key->isHeld());
}

TEST_F(PortalHotKeysTest, a_portal_that_comes_late_or_again_is_asked) {
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    EXPECT_NE(service->limitation(), QString());
    startPortal();
    ASSERT_TRUE(isAsked());
    allow({{QStringLiteral("take-micro-break")}});
    EXPECT_TRUE(becomesHeld(*key));
    portalBus.unregisterService(serviceName);
    EXPECT_TRUE(becomesHeld(*key, false));
    EXPECT_NE(service->limitation(), QString());
    portal.bindRequest.clear();
    startPortal();
    ASSERT_TRUE(isAsked());
    EXPECT_EQ(portal.sessions, 2);
}

} // namespace

} // namespace pavonel::test

#include "PortalHotKeysTest.moc"
