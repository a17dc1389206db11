#include "support/Compositor.h"

#include "support/files.h"

namespace pavonel::test {

QProcessEnvironment withoutDesktop() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto *name : {"WAYLAND_DISPLAY", "DISPLAY", "SWAYSOCK", "XDG_CONFIG_HOME", "XDG_CACHE_HOME",
                             "XDG_DATA_HOME", "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent"));
    return environment;
}

void overlookLeaksOfQt(QProcessEnvironment &environment, const QString &folder) {
    const QString file = folder + QStringLiteral("/suppressions");
    writeFile(file, "leak:libwayland-client.so\n");
    environment.insert(QStringLiteral("LSAN_OPTIONS"),
                       QStringLiteral("print_suppressions=0:suppressions=") + file);
}

} // namespace pavonel::test
