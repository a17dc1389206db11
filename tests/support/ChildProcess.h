#pragma once

#include <QProcess>

namespace pavonel::test {

/// A program that a test started. It is ended when this goes, and by the kernel if the test itself dies.
class ChildProcess {
public:
    /// Fails the test when the program cannot be started.
    ChildProcess(const QString &program, const QStringList &arguments,
                 const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;
    ~ChildProcess();

    QProcess &process() { return process_; }
    bool isRunning() const { return process_.state() == QProcess::Running; }

    /// Asks with SIGTERM, insists with SIGKILL.
    void end();

    struct Result {
        int status; ///< -1 when it could not be started, was killed or did not end.
        QByteArray output;
        QByteArray errors;
    };
    /// Runs a program to its end.
    static Result run(const QString &program, const QStringList &arguments,
                      const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

private:
    QProcess process_;
};

} // namespace pavonel::test
