#include "Platform/Linux/Applications/DesktopFiles.h"

#include "Platform/Linux/Applications/ProgramName.h"
#include "Platform/Linux/DesktopEntry.h"

#include <algorithm>
#include <tuple>

namespace pavonel {

namespace {

/// Programs that only start another one, which the command names somewhere behind them.
bool handsOver(const QByteArray &program) {
    return program == "flatpak" || program == "snap" || program == "xdg-open" || program == "pkexec" ||
           program == "gtk-launch" || program == "sh" || program == "bash";
}

} // namespace

std::optional<DesktopFile> parseDesktopFile(const QByteArray &contents) {
    const auto entry = DesktopEntry::parse(contents);
    if (!entry || entry->text("Type") != u"Application" || entry->isTrue("Hidden") ||
        entry->isTrue("Terminal"))
        return {};
    DesktopFile file;
    file.windowClass = entry->text("StartupWMClass");
    QByteArrayList command;
    for (const QString &word : entry->command())
        command.append(word.toLocal8Bit());
    const QByteArray program = programName(command);
    if (!program.isEmpty() && !handsOver(program)) {
        file.program = program;
        file.withArguments = !command.last().endsWith(program);
    }
    return file;
}

void DesktopFileIndex::add(const QString &identifier, const std::optional<DesktopFile> &file) {
    if (seen_.contains(identifier))
        return;
    seen_.insert(identifier);
    if (!file)
        return;
    applications_.insert(identifier);
    if (!file->windowClass.isEmpty())
        byWindowClass_.insert(file->windowClass.toLower(), identifier);
    if (file->program.isEmpty())
        return;
    const int rank = file->withArguments ? 2 : identifier == QString::fromUtf8(file->program) ? 0 : 1;
    const auto owner = byProgram_.constFind(file->program);
    if (owner == byProgram_.constEnd() ||
        std::tie(rank, identifier) < std::tie(owner->rank, owner->identifier))
        byProgram_.insert(file->program, {identifier, rank});
}

QString DesktopFileIndex::declaring(const QString &windowClass, const QString &ofProcess) const {
    const QStringList declaring = byWindowClass_.values(windowClass.toLower());
    if (declaring.isEmpty() || declaring.contains(ofProcess))
        return declaring.isEmpty() ? QString() : ofProcess;
    return *std::min_element(declaring.begin(), declaring.end());
}

QString DesktopFileIndex::named(const QString &windowClass) const {
    for (const QString &name : {windowClass, windowClass.toLower()}) {
        if (applications_.contains(name))
            return name;
    }
    return {};
}

/// A browser gives the windows of a web application the class of its own, and an instance that only the web
/// application's file declares.
QString DesktopFileIndex::forWindow(const QString &windowClass, const QString &instance,
                                    const QString &ofProcess) const {
    for (const QString &name : {instance, windowClass}) {
        if (QString identifier = declaring(name, ofProcess); !identifier.isEmpty())
            return identifier;
    }
    QString identifier = named(windowClass);
    return identifier.isEmpty() ? named(instance) : identifier;
}

} // namespace pavonel
