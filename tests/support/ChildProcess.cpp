#include "support/ChildProcess.h"

#include "support/generousTimeout.h"

#include <csignal>

#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace pavonel::test {

namespace {

void prepare(QProcess &process, const QProcessEnvironment &environment) {
    process.setProcessEnvironment(environment);
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

} // namespace

ChildProcess::ChildProcess(const QString &program, const QStringList &arguments,
                           const QProcessEnvironment &environment) {
    prepare(process_, environment);
    process_.start(program, arguments);
    if (!process_.waitForStarted(generousTimeout))
        ADD_FAILURE() << program.toStdString() << " could not be started";
}

ChildProcess::~ChildProcess() {
    end();
}

void ChildProcess::end() {
    if (process_.state() == QProcess::NotRunning)
        return;
    process_.terminate();
    if (process_.waitForFinished(5'000))
        return;
    process_.kill();
    process_.waitForFinished(generousTimeout);
}

ChildProcess::Result ChildProcess::run(const QString &program, const QStringList &arguments,
                                       const QProcessEnvironment &environment) {
    QProcess process;
    prepare(process, environment);
    process.start(program, arguments);
    const bool ended =
        process.waitForFinished(generousTimeout) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace pavonel::test
