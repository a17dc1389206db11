#include "Platform/Linux/Applications/ApplicationIdentity.h"

#include "Platform/Linux/Applications/DesktopFiles.h"
#include "Platform/Linux/Applications/ProcessFolder.h"
#include "Platform/Linux/Applications/ProgramName.h"
#include "Platform/Linux/Applications/Recorders.h"

namespace pavonel {

namespace {

/// What it truly runs, then what it was called by: links and wrappers make these differ.
QByteArrayList programsOf(const QByteArray &executable, QByteArrayList arguments) {
    QByteArrayList programs;
    const QByteArray called = programName(arguments);
    if (!arguments.isEmpty() && !executable.isEmpty())
        arguments.first() = executable;
    for (const QByteArray &program : {programName(arguments), called}) {
        if (!program.isEmpty() && !programs.contains(program))
            programs.append(program);
    }
    return programs;
}

} // namespace

QString identify(const ProcessFolder &process, const DesktopFileIndex &index) {
    const auto executable = process.executable();
    if (!executable)
        return {};
    const QByteArrayList arguments = process.arguments();
    const QByteArrayList programs = programsOf(*executable, arguments);
    for (const QByteArray &program : programs) {
        if (QString recorder = recorders::identifierOf(program, arguments); !recorder.isEmpty())
            return recorder;
    }
    if (QString flatpak = process.flatpak(); !flatpak.isEmpty())
        return flatpak;
    for (const QByteArray &program : programs) {
        if (QString identifier = index.forProgram(program); !identifier.isEmpty())
            return identifier;
    }
    QString named = identifierOfUnit(process.unit());
    return index.contains(named) ? named : QString();
}

} // namespace pavonel
