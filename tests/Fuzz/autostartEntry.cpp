#include "Fuzz/Target.h"
#include "Platform/Linux/AutostartLoginItem.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace pavonel::fuzz {

/// Whatever the entry holds, the switch does what it says.
void autostartEntry(const QByteArray &input) {
    static const QTemporaryDir folder;
    static const QString autostart = folder.filePath(QStringLiteral("autostart"));
    QDir().mkpath(autostart);
    QFile file(autostart + QStringLiteral("/org.pavonel.Pavonel.desktop"));
    require(file.open(QFile::WriteOnly | QFile::Truncate) && file.write(input) == input.size());
    file.close();
    AutostartLoginItem item(QStringLiteral("/bin/true"), folder.path());
    static_cast<void>(item.isEnabled());
    require(!item.setEnabled(true) && item.isEnabled());
    require(!item.setEnabled(false) && !item.isEnabled());
}

} // namespace pavonel::fuzz
