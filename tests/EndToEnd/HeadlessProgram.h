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

    /// Seconds of screen time that the store holds for today.
    double storedScreenSeconds() const;

    QProcessEnvironment &environment() { return environment_; }

    /// Starts it and waits until it can be asked to end. The shell commands run before it in the same
    /// process, with
    /// "$1" as the folder of the store; with commands, the process has a view of the file system of its own,
    /// in which it may mount.
    void start(const QByteArray &commandsBefore = {});
    bool isRunning() const { return program_ && program_->isRunning(); }

    /// Sends the signal and gives the exit status, -1 when it crashed, was killed or did not end.
    int end(int signal);

private:
    QTemporaryDir home_;
    QProcessEnvironment environment_;
    std::unique_ptr<ChildProcess> program_;
};

} // namespace pavonel::test
