#include "Platform/Linux/Fetch/FetchProcess.h"
#include "Platform/Qt/ProgramFiles.h"
#include "support/ChildProcess.h"
#include "support/HttpServer.h"
#include "support/InChild.h"
#include "support/ToolFixture.h"
#include "support/kernelKnows.h"

#include <utility>

namespace pavonel::test {

namespace {

/// The tool that reads what servers send, taken over by one of them.
class FetchConfinement : public ToolFixture {
protected:
    FetchConfinement() {
        write(QStringLiteral("secret"), "secret");
        write(QStringLiteral("victim"), "victim");
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(PAVONEL_INTRUDER));
        environment.insert(QStringLiteral("INTRUDER_FOLDER"), folder());
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    }

    static QByteArray order(const QUrl &url) {
        HttpRequest request;
        request.method = "GET";
        request.url = url;
        return fetchOrder(request, {.longest = 60, .longestStall = 0, .largest = 1000});
    }

    /// Runs commands of bash, while our server serves, and gives what they printed: first what is right, then
    /// what is wrong.
    std::pair<QByteArray, QByteArray> bash(const QString &commands) const {
        ChildProcess process(QStringLiteral("bash"), {QStringLiteral("-c"), commands}, environment);
        EXPECT_TRUE(waitUntil([&] { return !process.isRunning(); }));
        return {process.process().readAllStandardOutput(), process.process().readAllStandardError()};
    }
    /// What an intruder could do in the tool, which does its work all the same.
    QByteArrayList takenOver() const {
        write(QStringLiteral("order"), order(server.url()));
        const auto [body, told] =
            bash(QStringLiteral("exec '%1' <'%2'").arg(tool(), path(QStringLiteral("order"))));
        EXPECT_EQ(body, "hello");
        QByteArrayList lines = told.trimmed().split('\n');
        EXPECT_EQ(lines.takeLast(), "200");
        return lines;
    }
    QString tool() const { return ProgramFiles::ofThisProgram().tool(QStringLiteral("fetch")); }

    HttpServer server{HttpServer::respond(200, "hello")};
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

} // namespace

TEST_F(FetchConfinement, whoever_takes_it_over_reads_and_writes_nothing_of_the_user) {
    if (!knowsLandlock())
        GTEST_SKIP() << "This kernel has no Landlock.";
    const QByteArrayList done = takenOver();
    for (const char *deed : {"read", "wrote", "removed"})
        EXPECT_FALSE(done.contains(deed)) << deed;
    EXPECT_TRUE(exists(QStringLiteral("victim")));
}

TEST_F(FetchConfinement, whoever_takes_it_over_starts_nothing_and_speaks_to_nobody_on_this_machine) {
    if (!knowsSeccomp())
        GTEST_SKIP() << "This kernel has no seccomp.";
    const QByteArrayList done = takenOver();
    for (const char *deed :
         {"opened", "spoke", "wrote to another socket", "signalled", "limited another", "ran"})
        EXPECT_FALSE(done.contains(deed)) << deed;
}

TEST_F(FetchConfinement, who_is_not_confined_may_all_that_is_tried) {
    const QString connect = QStringLiteral("import socket; socket.create_connection((\"127.0.0.1\", %1))")
                                .arg(server.url().port());
    const auto unconfined = bash(QStringLiteral("exec /usr/bin/python3 -c '%1'").arg(connect));
    EXPECT_EQ(unconfined.second, "read\nwrote\nremoved\nopened\nspoke\nwrote to another socket\n"
                                 "signalled\nlimited another\nran\n");
}

TEST_F(FetchConfinement, names_are_found_without_a_resolver_behind_a_socket) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test have a network of its own.";
    environment.remove(QStringLiteral("LD_PRELOAD"));
    write(QStringLiteral("order"), order(QUrl(QStringLiteral("http://updates.example.org:8123/"))));
    write(QStringLiteral("resolv.conf"), "nameserver 127.0.0.1\n");
    write(QStringLiteral("nsswitch.conf"), "hosts: files resolve [!UNAVAIL=return] dns\n");
    const auto found =
        bash(QStringLiteral("cd '%1'; exec unshare -rmn bash -c 'for file in resolv.conf nsswitch.conf; do "
                            "mount --bind $file /etc/$file; done; \"$@\" <order' - '%2' 8123 '%3'")
                 .arg(folder(), QStringLiteral(PAVONEL_SOURCE_DIR "/tests/Platform/name-server"), tool()));
    EXPECT_EQ(found, std::pair(QByteArray("hello"), QByteArray("200\n")));
}

TEST_F(FetchConfinement, a_machine_nearby_is_found_by_its_name) {
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(PAVONEL_NEARBY_NAMES));
    QUrl nearby = server.url();
    nearby.setHost(QStringLiteral("relay.local"));
    write(QStringLiteral("order"), order(nearby));
    const auto found = bash(QStringLiteral("exec '%1' <'%2'").arg(tool(), path(QStringLiteral("order"))));
    EXPECT_EQ(found, std::pair(QByteArray("hello"), QByteArray("200\n")));
}

TEST_F(FetchConfinement, it_writes_no_file_and_leaves_no_image_of_its_memory) {
    environment.remove(QStringLiteral("LD_PRELOAD"));
    const HttpServer slow([](const auto &, auto &) {});
    write(QStringLiteral("order"), order(slow.url()));
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
