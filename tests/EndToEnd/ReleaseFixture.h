#pragma once

#include "EndToEnd/HeadlessProgram.h"
#include "EndToEnd/ProcessesIn.h"
#include "support/HttpServer.h"

#include <gtest/gtest.h>

namespace pavonel::test {

/// A team that makes releases of the built program, a web site that serves them, and the home of a user who
/// installed one.
class ReleaseFixture : public testing::Test {
protected:
    ReleaseFixture();
    /// Ends whatever runs of the installed copy.
    ~ReleaseFixture() override;

    /// Runs commands of bash in the home, with the functions of the file "release-fixture", and gives what
    /// they printed. Fails the test when they fail.
    QByteArray shell(const QByteArray &commands);
    /// The status and the complaints of the same.
    ChildProcess::Result tryShell(const QByteArray &commands);

    QString path(const char *inHome) const { return home.path(QString::fromUtf8(inHome)); }
    bool exists(const char *inHome) const;
    QByteArray read(const char *inHome) const;
    void write(const char *inHome, const QByteArray &content) const;

    QString installed() const { return path("Applications/Pavonel.app"); }
    QByteArray fingerprint() { return shell("fingerprint Applications"); }
    /// The running processes of the installed copy.
    std::vector<qint64> processes() const { return processesIn(path("Applications")); }

    struct Update {
        int status; ///< -1 when it did not end by itself.
        QByteArrayList lines;
        QByteArray errors;
    };
    /// What the installed copy says to --update-now. With `commandsBefore`, they run first in the same
    /// process, which then has a view of the file system of its own.
    Update updateNow(const QByteArray &commandsBefore = {});
    std::unique_ptr<ChildProcess> startUpdate(const QByteArray &commandsBefore = {});

    HeadlessProgram home;
    /// Serves the folder "site".
    HttpServer server{[this](const auto &request, auto &connection) { serve(request, connection); }};
    /// Comes before the site when it is set.
    HttpServer::Answer answer;

private:
    void serve(const HttpServer::Request &request, QTcpSocket &connection);
};

} // namespace pavonel::test
