#pragma once

#include "EndToEnd/HeadlessProgram.h"
#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

/// The built program on a session bus, and another program there.
struct ProgramOnABus : testing::Test {
    ProgramOnABus() { program.environment().insert(sessionBus, bus->address()); }
    ~ProgramOnABus() override { QDBusConnection::disconnectFromBus(QStringLiteral("outsider")); }

    void startAndWaitForTheName() {
        program.start();
        ASSERT_TRUE(waitUntil([this] { return outsider.interface()->isServiceRegistered(service).value(); }));
    }

    /// Calls a method of the program's object and gives the reply.
    QDBusMessage call(const QString &interface, const char *method, const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(service, QStringLiteral("/org/pavonel/Pavonel"),
                                                              interface, QString::fromUtf8(method));
        message.setArguments(arguments);
        return outsider.call(message);
    }

    const QString service = QStringLiteral("org.pavonel.Pavonel");
    const QString sessionBus = QStringLiteral("DBUS_SESSION_BUS_ADDRESS");
    std::optional<MessageBus> bus{std::in_place};
    QDBusConnection outsider = QDBusConnection::connectToBus(bus->address(), QStringLiteral("outsider"));
    HeadlessProgram program;
};

} // namespace pavonel::test
