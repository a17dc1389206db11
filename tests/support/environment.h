#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QtGlobal>

namespace pavonel::test {

/// Sets what Qt and libdbus miss on a bare machine, for this program and for all that it starts: without a
/// locale Qt complains, and a search for the desktop's bus and portal leaves calls and memory behind.
inline void completeEnvironment() {
    if (!qEnvironmentVariableIsSet("LANG"))
        qputenv("LANG", "C.UTF-8");
    if (!qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS"))
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("QT_NO_XDG_DESKTOP_PORTAL", "1");
}

inline void insert(QProcessEnvironment &environment, const char *name, const QString &value) {
    environment.insert(QString::fromLatin1(name), value);
}

} // namespace pavonel::test
