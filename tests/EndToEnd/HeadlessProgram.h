#pragma once

#include "support/ChildProcess.h"

#include <QJsonObject>
#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

/// The built program without a display and without a message bus, in a home of its own.
class HeadlessProgram {
public:
    HeadlessProgram();

    QString storeFolder() const { return home_.filePath(QStringLiteral("config/pavonel")); }
    QString storePath() const { return storeFolder() + QStringLiteral("/defaults.json"); }
    QJsonObject stored() const;

    /// A number of today's record in the store; 0 when there is none.
    double storedToday(const QString &number) const;

    QString path(const QString &inHome) const { return home_.filePath(inHome); }

    /// Another copy of the program than the one in the build folder.
    void use(const QString &program) { executable_ = program; }

    QProcessEnvironment &environment() { return environment_; }

    /// Runs another process of the program to its end.
    ChildProcess::Result run(const QStringList &arguments) const;

    /// Starts it and waits until it can be asked to end. The shell commands run before it in the same
    /// process, with
    /// "$1" as the folder of the store; with commands, the process has a view of the file system of its own,
    /// in which it may mount.
    void start(const QByteArray &commandsBefore = {});
    void startWith(const QStringList &arguments);
    bool isRunning() const { return program_ && program_->isRunning(); }

    void send(int signal);

    /// What it has written to its standard error since this was last asked.
    QByteArray errors() { return program_->process().readAllStandardError(); }

    /// In kilobytes; 0 when it does not run.
    qint64 residentMemory() const;

    /// Sends the signal and gives the exit status, -1 when it crashed, was killed or did not end.
    int end(int signal);
    void kill();

private:
    void waitUntilItCanEnd();

    QString executable_;
    QTemporaryDir home_;
    QProcessEnvironment environment_;
    std::unique_ptr<ChildProcess> program_;
};

} // namespace pavonel::test
