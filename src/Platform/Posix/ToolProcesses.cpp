#include "Platform/Posix/ToolProcesses.h"

#include <QProcess>

#include <sys/stat.h>

namespace pavonel {

namespace {

constexpr int withoutLimit = -1;
constexpr int statusOfAKilledTool = 128;
constexpr mode_t usualMask = 022;

} // namespace

ToolRunner::Outcome ToolProcesses::run(const QString &tool, const QStringList &arguments) {
    const QString executable = files_.executable(tool);
    if (executable.isEmpty())
        return NotStarted{QStringLiteral("The program %1 is missing.").arg(tool)};
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { ::umask(usualMask); }); // what tools copy keeps its permissions
    process.start(executable, arguments);
    if (!process.waitForStarted(withoutLimit))
        return NotStarted{
            QStringLiteral("The program %1 cannot be started (%2).").arg(executable, process.errorString())};
    process.waitForFinished(withoutLimit);
    const int status =
        process.exitStatus() == QProcess::NormalExit ? process.exitCode() : statusOfAKilledTool;
    return Ended{status, process.readAll()};
}

} // namespace pavonel
