#include "support/MockLogind.h"

#include "support/waitUntil.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString service = QStringLiteral("org.freedesktop.login1");
const QString path = QStringLiteral("/org/freedesktop/login1");
const QString manager = QStringLiteral("org.freedesktop.login1.Manager");

} // namespace

MockLogind::MockLogind()
    : connection_(QDBusConnection::connectToBus(bus_.address(), QStringLiteral("test-system-bus"))) {
    EXPECT_TRUE(connection_.isConnected());
    start();
}

MockLogind::~MockLogind() {
    QDBusConnection::disconnectFromBus(QStringLiteral("test-system-bus"));
}

void MockLogind::start() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), bus_.address());
    logind_ =
        std::make_unique<ChildProcess>(QStringLiteral("/usr/bin/python3"),
                                       QStringList{QStringLiteral("-m"), QStringLiteral("dbusmock"),
                                                   QStringLiteral("--template"), QStringLiteral("logind")},
                                       environment);
    EXPECT_TRUE(waitUntil([this] { return connection_.interface()->isServiceRegistered(service).value(); }))
        << logind_->process().readAllStandardError().toStdString();
}

void MockLogind::stop() {
    logind_.reset();
    EXPECT_TRUE(waitUntil([this] { return !connection_.interface()->isServiceRegistered(service).value(); }));
}

QStringList MockLogind::locks() const {
    const QDBusMessage reply = connection_.call(
        QDBusMessage::createMethodCall(service, path, manager, QStringLiteral("ListInhibitors")));
    QStringList locks;
    const auto array = reply.arguments().value(0).value<QDBusArgument>();
    for (array.beginArray(); !array.atEnd();) {
        QString what;
        QString who;
        QString why;
        QString mode;
        uint user = 0;
        uint process = 0;
        array.beginStructure();
        array >> what >> who >> why >> mode >> user >> process;
        array.endStructure();
        locks.append(what + u':' + who + u':' + mode);
    }
    array.endArray();
    return locks;
}

void MockLogind::announce(bool isGoingToSleep) {
    QDBusMessage emitSignal = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Mock"), QStringLiteral("EmitSignal"));
    emitSignal << manager << QStringLiteral("PrepareForSleep") << QStringLiteral("b")
               << QVariantList{isGoingToSleep};
    const QDBusMessage reply = connection_.call(emitSignal);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
}

} // namespace pavonel::test
