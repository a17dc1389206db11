#include "support/MessageBus.h"

#include "support/generousTimeout.h"

#include <QFile>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Everything is allowed, and no service file of this machine is known.
QString configuration(const QString &folder, const QString &address, const QString &services) {
    const QString path = folder + QStringLiteral("/bus.conf");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write("<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
               "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
               "<busconfig><type>session</type><listen>" +
               address.toUtf8() + "</listen>" +
               (services.isEmpty() ? QByteArray() : "<servicedir>" + services.toUtf8() + "</servicedir>") +
               "<auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\" "
               "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
    return path;
}

} // namespace

MessageBus::MessageBus(const QString &services, const QProcessEnvironment &environment)
    : address_(QStringLiteral("unix:path=%1/bus").arg(folder_.path())),
      daemon_(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
               QStringLiteral("--config-file=") + configuration(folder_.path(), address_, services)},
              environment) {
    if (!daemon_.process().waitForReadyRead(generousTimeout)) // it names its address once it listens
        ADD_FAILURE() << "No message bus: " << daemon_.process().readAllStandardError().toStdString();
}

} // namespace pavonel::test
