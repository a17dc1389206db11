#include "Platform/Linux/Fetch/FetchProcess.h"
#include "Platform/Qt/ProgramFiles.h"
#include "support/ChildProcess.h"
#include "support/HttpServer.h"
#include "support/Workshop.h"

#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

bool knowsLandlock() {
    constexpr long create = 444;
    constexpr int askVersion = 1;
    return ::syscall(create, nullptr, 0, askVersion) >= 1;
}

/// The tool that reads what servers send, taken over by one of them.
class FetchConfinement : public Workshop {
protected:
    FetchConfinement() {
        write(QStringLiteral("secret"), "secret");
        write(QStringLiteral("victim"), "victim");
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(PAVONEL_INTRUDER));
        environment.insert(QStringLiteral("INTRUDER_FOLDER"), folder());
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    }

    static QByteArray order(const HttpServer &from) {
        HttpRequest request;
        request.method = "GET";
        request.url = from.url();
        return fetchOrder(request, {.longest = 60, .longestStall = 0, .largest = 1000});
    }

    /// Runs commands of bash, while our server serves, and gives what they printed: first what is right, then
    /// what is wrong.
    std::pair<QByteArray, QByteArray> bash(const QString &commands) const {
        ChildProcess process(QStringLiteral("bash"), {QStringLiteral("-c"), commands}, environment);
        EXPECT_TRUE(waitUntil([&] { return !process.isRunning(); }));
        return {process.process().readAllStandardOutput(), process.process().readAllStandardError()};
    }
    QString tool() const { return ProgramFiles::ofThisProgram().tool(QStringLiteral("fetch")); }

    HttpServer server{HttpServer::respond(200, "hello")};
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

} // namespace

TEST_F(FetchConfinement, whoever_takes_it_over_reads_and_writes_nothing_of_the_user_and_starts_no_program) {
    if (!knowsLandlock())
        GTEST_SKIP() << "This kernel has no Landlock.";
    write(QStringLiteral("order"), order(server));
    const auto taken = bash(QStringLiteral("exec '%1' <'%2'").arg(tool(), path(QStringLiteral("order"))));
    EXPECT_EQ(taken, std::pair(QByteArray("hello"), QByteArray("200\n")));
    EXPECT_TRUE(exists(QStringLiteral("victim")));

    const auto unconfined = bash(QStringLiteral("exec 3<>/dev/tcp/127.0.0.1/%1").arg(server.url().port()));
    EXPECT_EQ(unconfined.second, "read\nwrote\nremoved\nran\n") << "nothing was tried";
}

TEST_F(FetchConfinement, it_writes_no_file_and_leaves_no_image_of_its_memory) {
    environment.remove(QStringLiteral("LD_PRELOAD"));
    const HttpServer slow([](const auto &, auto &) {});
    write(QStringLiteral("order"), order(slow));
    ChildProcess fetch(
        QStringLiteral("bash"),
        {QStringLiteral("-c"), QStringLiteral("exec '%1' <'%2'").arg(tool(), path(QStringLiteral("order")))},
        environment);
    ASSERT_TRUE(waitUntil([&] { return !slow.requests().empty(); }));
    const QString process = QStringLiteral("/proc/%1/").arg(fetch.process().processId());
    const QByteArray limits = readFile(process + QStringLiteral("limits")).simplified();
    EXPECT_TRUE(limits.contains("Max file size 0 0")) << limits.constData();
    EXPECT_TRUE(limits.contains("Max core file size 0 0")) << limits.constData();
    EXPECT_TRUE(readFile(process + QStringLiteral("status")).contains("NoNewPrivs:\t1\n"));
}

} // namespace pavonel::test
