#include "Platform/Linux/AutostartLoginItem.h"

#include "Platform/Linux/DesktopEntry.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

/// The file that starts when a desktop starts `program`; empty when nothing would.
QString executable(const QString &program) {
    const QString path = QDir::isAbsolutePath(program) ? program : QStandardPaths::findExecutable(program);
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable() ? file.canonicalFilePath() : QString();
}

bool isForThisDesktop(const DesktopEntry &entry) {
    const QStringList here = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
    const auto names = [&](const QByteArray &key) {
        const QStringList desktops = entry.list(key);
        return std::any_of(here.begin(), here.end(),
                           [&](const QString &desktop) { return desktops.contains(desktop); });
    };
    return entry.has("OnlyShowIn") ? names("OnlyShowIn") : !names("NotShowIn");
}

bool isSwitchedOn(const DesktopEntry &entry) {
    return entry.text("Type") == u"Application" && !entry.isTrue("Hidden") &&
           !entry.isFalse("X-GNOME-Autostart-enabled");
}

bool mayStart(const DesktopEntry &entry) {
    return !entry.has("TryExec") || !executable(entry.text("TryExec")).isEmpty();
}

void switchOn(DesktopEntry &entry) {
    entry.setText("Type", QStringLiteral("Application"));
    entry.remove("Hidden");
    if (entry.has("X-GNOME-Autostart-enabled"))
        entry.setText("X-GNOME-Autostart-enabled", QStringLiteral("true"));
    if (!isForThisDesktop(entry)) {
        entry.remove("OnlyShowIn");
        entry.remove("NotShowIn");
    }
}

/// The program of an entry cannot have an equals sign in its path, and some desktops do not find one with a
/// percent sign. Arguments can have both, so a command that changes nothing goes in front.
QStringList commandFor(const QString &program) {
    if (!program.contains(u'=') && !program.contains(u'%'))
        return {program};
    return {QStringLiteral("nice"), QStringLiteral("-n"), QStringLiteral("0"), program};
}

void describe(DesktopEntry &entry) {
    if (entry.has("Name"))
        return;
    entry.setText("Name", QStringLiteral("Pavonel"));
    entry.setText("Comment", QStringLiteral("Reminds you to take breaks"));
    entry.setText("Icon", QStringLiteral("org.pavonel.Pavonel"));
    entry.setText("Terminal", QStringLiteral("false"));
}

} // namespace

AutostartLoginItem::AutostartLoginItem(QString program, const QString &configFolder)
    : program_(std::move(program)), folder_(configFolder + QStringLiteral("/autostart")),
      path_(folder_ + QStringLiteral("/org.pavonel.Pavonel.desktop")) {}

void AutostartLoginItem::takeOverEarlierEntry() const {
    QFile earlier(folder_ + QStringLiteral("/pavonel.desktop"));
    if (!earlier.rename(path_))
        earlier.remove();
}

/// Behind a wrapper such as "env" or "nice" the program is one of the arguments.
bool AutostartLoginItem::startsUs(const DesktopEntry &entry) const {
    const QStringList command = entry.command();
    const QString us = executable(program_);
    return !us.isEmpty() && !command.isEmpty() && !executable(command.first()).isEmpty() &&
           std::any_of(command.begin(), command.end(),
                       [&](const QString &part) { return executable(part) == us; });
}

bool AutostartLoginItem::isEnabled() {
    const auto entry = DesktopEntry::read(path_);
    return entry && isSwitchedOn(*entry) && isForThisDesktop(*entry) && mayStart(*entry) && startsUs(*entry);
}

std::optional<QString> AutostartLoginItem::setEnabled(bool enabled) {
    if (enabled) {
        DesktopEntry entry = DesktopEntry::read(path_).value_or(DesktopEntry());
        switchOn(entry);
        describe(entry);
        if (!startsUs(entry) || !mayStart(entry)) {
            entry.setCommand(commandFor(program_));
            entry.setText("TryExec", program_);
        }
        return write(entry);
    }
    QFile file(path_);
    const bool isThere = file.exists() || QFileInfo(path_).isSymLink();
    if (!isThere || file.remove())
        return {};
    return QStringLiteral("Pavonel still starts at login, because the file %1 cannot be removed (%2).")
        .arg(path_, file.errorString());
}

std::optional<QString> AutostartLoginItem::write(const DesktopEntry &entry) const {
    if (!QDir().mkpath(folder_))
        return QStringLiteral("Pavonel cannot start at login, because the folder %1 cannot be made.")
            .arg(folder_);
    QSaveFile file(path_);
    if (file.open(QFile::WriteOnly)) {
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
        file.write(entry.content());
        if (file.commit())
            return {};
    }
    return QStringLiteral("Pavonel cannot start at login, because the file %1 cannot be written (%2).")
        .arg(path_, file.errorString());
}

} // namespace pavonel
