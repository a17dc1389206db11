#include "support/AccessibilityBus.h"

#include "support/waitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString service = QStringLiteral("org.a11y.Bus");
const QString busVariable = QStringLiteral("DBUS_SESSION_BUS_ADDRESS");

QProcessEnvironment withoutUsersSettings(QProcessEnvironment environment) {
    environment.insert(QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("memory"));
    return environment;
}

} // namespace

AccessibilityBus::AccessibilityBus(QProcessEnvironment environment)
    : launcher_(QStringLiteral("/usr/libexec/at-spi-bus-launcher"), {QStringLiteral("--launch-immediately")},
                withoutUsersSettings(environment)) {
    {
        const auto bus = QDBusConnection::connectToBus(environment.value(busVariable), service);
        EXPECT_TRUE(waitUntil([&] { return bus.interface()->isServiceRegistered(service).value(); }))
            << "No accessibility bus: " << launcher_.process().readAllStandardError().toStdString();
    }
    QDBusConnection::disconnectFromBus(service);
}

} // namespace pavonel::test
