#include "EndToEnd/ReleaseFixture.h"

#include "support/files.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QTcpSocket>

namespace pavonel::test {

namespace {

const QString bash = QStringLiteral("bash");

} // namespace

ReleaseFixture::ReleaseFixture() {
    home.environment().insert(QStringLiteral("PAVONEL_UPDATE_FEED"), server.url("/updates.json").toString());
    home.environment().insert(QStringLiteral("url"), server.url().toString());
    home.environment().insert(QStringLiteral("project"), QStringLiteral(PAVONEL_SOURCE_DIR));
    home.environment().insert(QStringLiteral("build"), QFileInfo(QStringLiteral(PAVONEL_PROGRAM)).path());
    write("config/pavonel/defaults.json",
          R"({"didOnboard": true, "launchAtLogin": false, "autoUpdate": false})");
    shell("make_keys team; make_keys stranger");
}

ReleaseFixture::~ReleaseFixture() {
    EXPECT_TRUE(endProcessesOf(home.environment().value(QStringLiteral("HOME"))));
}

QByteArray ReleaseFixture::shell(const QByteArray &commands) {
    const auto result = tryShell(commands);
    EXPECT_EQ(result.status, 0) << commands.toStdString() << "\n"
                                << (result.output + result.errors).toStdString();
    return result.output;
}

ChildProcess::Result ReleaseFixture::tryShell(const QByteArray &commands) {
    const QByteArray prelude =
        "cd -- '" + QFile::encodeName(path("")) + "' && . \"$project/tests/EndToEnd/release-fixture\"\n";
    return ChildProcess::run(bash, {QStringLiteral("-c"), QString::fromUtf8(prelude + commands)},
                             home.environment());
}

bool ReleaseFixture::exists(const char *inHome) const {
    return QFileInfo::exists(path(inHome));
}

QByteArray ReleaseFixture::read(const char *inHome) const {
    return readFile(path(inHome));
}

void ReleaseFixture::write(const char *inHome, const QByteArray &content) const {
    writeFile(path(inHome), content);
}

std::unique_ptr<ChildProcess> ReleaseFixture::startUpdate(const QByteArray &commandsBefore) {
    const QString program = installed() + QStringLiteral("/pavonel");
    const QString updateNow = QStringLiteral("--update-now");
    if (commandsBefore.isEmpty())
        return std::make_unique<ChildProcess>(program, QStringList{updateNow}, home.environment());
    const QString script = QString::fromUtf8("set -e\n" + commandsBefore + "\nexec \"$0\" \"$@\"");
    return std::make_unique<ChildProcess>(
        QStringLiteral("unshare"),
        QStringList{QStringLiteral("-rm"), bash, QStringLiteral("-c"), script, program, updateNow},
        home.environment());
}

ReleaseFixture::Update ReleaseFixture::updateNow(const QByteArray &commandsBefore) {
    const auto program = startUpdate(commandsBefore);
    const bool ended = waitUntil([&] { return !program->isRunning(); });
    EXPECT_TRUE(ended) << "the update neither succeeded nor failed";
    QProcess &process = program->process();
    QByteArrayList lines = process.readAllStandardOutput().split('\n');
    lines.removeLast();
    return {ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, lines,
            process.readAllStandardError()};
}

void ReleaseFixture::serve(const HttpServer::Request &request, QTcpSocket &connection) {
    if (answer)
        return answer(request, connection);
    QFile file(path("site") + QString::fromUtf8(request.line().split(' ').value(1)));
    if (!file.open(QFile::ReadOnly))
        return HttpServer::respond(404, "<html>Not found</html>")(request, connection);
    HttpServer::respond(200, file.readAll())(request, connection);
}

} // namespace pavonel::test
