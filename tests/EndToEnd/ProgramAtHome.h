#pragma once

#include "support/ChildProcess.h"

#include <QDate>
#include <QElapsedTimer>
#include <QJsonObject>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

/// The built program in a home of its own, driven and looked at through its store's file and by signals. It
/// is always night: midnight is over, and no planned break is near.
class ProgramAtHome {
public:
    /// `desktop` is what a program needs to know in order to run on it.
    explicit ProgramAtHome(const QProcessEnvironment &desktop);
    ~ProgramAtHome();

    /// What the program finds in its store, on top of settings that keep the tests short and silent.
    void store(const QJsonObject &members);
    QString storePath() const;
    QJsonObject stored() const;

    /// The date where the program is.
    static QDate today();

    /// Today's record of the statistics; empty when there is none.
    QJsonObject statistics() const;

    /// What the program will be started with.
    QProcessEnvironment &environment() { return environment_; }

    /// Another copy of the program than the one in the build folder.
    void use(const QString &program) { executable_ = program; }

    /// A command line in front starts it in its own stead.
    void startProgram(QStringList inFront = {});
    /// With an output whose reader has left; to write there ends whoever does nothing against it.
    void startProgramUnread();
    /// What a further call of the program tells of it on its bus.
    QJsonObject status() const;
    bool isRunning() const { return program_ && program_->isRunning(); }
    /// The threads of the running program that bear this name.
    QStringList threads(const QString &name) const;
    /// What of the program's files is in its memory; in KiB.
    int codeInMemory() const;
    qint64 millisecondsSinceStart() const { return sinceStart_.elapsed(); }

    void sendSignal(int signal);

    /// Sends the signal and gives the exit status, -1 when the program crashed, was killed or did not end.
    int endProgram(int signal);
    int waitForExit();

protected:
    /// To be called before the desktop goes.
    void stopProgram() { program_.reset(); }
    QProcess &process() { return program_->process(); }

private:
    void settleAtHome();
    void launch(const QString &program, const QStringList &arguments);

    QTemporaryDir home_;
    QString executable_;
    QProcessEnvironment environment_;
    std::unique_ptr<ChildProcess> program_;
    QElapsedTimer sinceStart_;
};

} // namespace pavonel::test
