#pragma once

#include "Platform/Qt/ProgramFiles.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

/// A private folder with a program folder in it, where tests put tools of their own. What those leave in the
/// folder is how a test sees them; `leaveAlive` in a tool names it for ending.
class ToolFixture : public testing::Test {
protected:
    ToolFixture() { QDir(folder()).mkpath(QStringLiteral("program/libexec/pavonel")); }

    ~ToolFixture() override {
        for (const QString &name : QDir(folder()).entryList({QStringLiteral("*.pid")}))
            ::kill(read(name).toInt(), SIGKILL);
    }

    QString folder() const { return folder_.path(); }
    QString path(const QString &name) const { return folder() + u'/' + name; }
    ProgramFiles files() const { return ProgramFiles(path(QStringLiteral("program/pavonel"))); }

    /// Writes an executable shell script whose working folder is the fixture.
    QString addScript(const QString &name, const QByteArray &commands) const {
        const QString script = path(name);
        write(name, "#!/bin/sh\ncd '" + QFile::encodeName(folder()) + "' || exit\n" + commands + '\n');
        QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return script;
    }
    QString addTool(const QString &name, const QByteArray &commands) const {
        return addScript(QStringLiteral("program/libexec/pavonel/") + name, commands);
    }

    void write(const QString &name, const QByteArray &content) const { writeFile(path(name), content); }
    QByteArray read(const QString &name) const { return readFile(path(name)); }
    bool exists(const QString &name) const { return QFile::exists(path(name)); }
    bool appears(const QString &name) const {
        return waitUntil([&] { return exists(name); });
    }

    /// What a tool recorded; fails the test when none does.
    QByteArrayList recordedArguments() const {
        EXPECT_TRUE(appears(QStringLiteral("arguments")));
        QByteArrayList arguments = read(QStringLiteral("arguments")).split('\0');
        arguments.removeLast();
        return arguments;
    }

private:
    QTemporaryDir folder_;
};

/// In a tool: writes down the arguments, in one step.
inline const QByteArray recordArguments =
    "printf '%s\\0' \"$@\" >new-arguments; mv new-arguments arguments\n";

/// In a tool, as its last command: names the process in "alive.pid" and stays.
inline const QByteArray leaveAlive = "echo $$ >new-pid; mv new-pid alive.pid; exec sleep 600\n";

} // namespace pavonel::test
