#include "Platform/Linux/Applications/DesktopFiles.h"

#include "Platform/Linux/Applications/ProgramName.h"
#include "Platform/Linux/DesktopEntry.h"

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
    const auto claimClass = [&](const QString &windowClass) {
        const QString key = windowClass.toLower();
        if (!byWindowClass_.contains(key))
            byWindowClass_.insert(key, identifier);
    };
    if (!file->windowClass.isEmpty())
        claimClass(file->windowClass);
    if (file->program.isEmpty())
        return;
    const int rank = file->withArguments ? 2 : identifier == QString::fromUtf8(file->program) ? 0 : 1;
    const auto owner = byProgram_.constFind(file->program);
    if (owner == byProgram_.constEnd() || rank < owner->rank)
        byProgram_.insert(file->program, {identifier, rank});
}

QString DesktopFileIndex::forWindowClass(const QString &windowClass) const {
    if (windowClass.isEmpty())
        return {};
    QString declared = byWindowClass_.value(windowClass.toLower());
    if (!declared.isEmpty())
        return declared;
    if (applications_.contains(windowClass))
        return windowClass;
    const QString lower = windowClass.toLower();
    return applications_.contains(lower) ? lower : QString();
}

} // namespace pavonel
