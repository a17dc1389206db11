#include "Platform/UpdateTools.h"
#include "support/HttpServer.h"
#include "support/kernelKnows.h"

namespace pavonel::test {

namespace {

/// What runs the unpacker with few rights.
class UpdateToolsConfine : public UpdateTools {
protected:
    UpdateToolsConfine() { shell("mkdir inside; echo image >disk.dmg; echo secret >secret"); }

    ChildProcess::Result confined(const QString &commands,
                                  const QString &where = QStringLiteral("inside")) const {
        return run("confine", {path(QStringLiteral("disk.dmg")), where.isEmpty() ? where : path(where),
                               QStringLiteral("bash"), QStringLiteral("-c"),
                               QStringLiteral("cd '%1' 2>/dev/null; %2").arg(folder(), commands)});
    }
};

} // namespace

TEST_F(UpdateToolsConfine, it_reads_the_image_and_writes_in_its_folder) {
    const auto result =
        confined(QStringLiteral("mkdir '%1/inside/a' && cp '%1/disk.dmg' '%1/inside/a'").arg(folder()));
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_EQ(read(QStringLiteral("inside/a/disk.dmg")), "image\n");
}

TEST_F(UpdateToolsConfine, it_writes_nowhere_else_and_reads_nothing_of_the_user) {
    if (!knowsLandlock())
        GTEST_SKIP() << "This kernel has no Landlock.";
    for (const char *commands :
         {"echo x >'%1/outside'", "mkdir '%1/outside'", "ln -s x '%1/outside'", "echo x >>'%1/secret'",
          "mv '%1/disk.dmg' '%1/outside'", "rm '%1/secret'", "cat '%1/secret'", "ls '%1'"}) {
        const auto result = confined(QString::fromUtf8(commands).arg(folder()));
        EXPECT_NE(result.status, 0) << commands;
        EXPECT_EQ(result.output, "") << commands;
    }
    EXPECT_NE(confined(QStringLiteral("echo x >'%1/inside/x'").arg(folder()), QString()).status, 0)
        << "without a folder it writes nowhere";
    EXPECT_FALSE(exists(QStringLiteral("outside")));
    EXPECT_EQ(read(QStringLiteral("secret")), "secret\n");
}

TEST_F(UpdateToolsConfine, it_has_no_network) {
    const bool hasNamespaces =
        ChildProcess::run(QStringLiteral("unshare"), {QStringLiteral("-rn"), QStringLiteral("true")})
            .status == 0;
    if (!knowsLandlock() && !knowsSeccomp() && !hasNamespaces)
        GTEST_SKIP() << "This system gives a plain user nothing to give a network up with.";
    const HttpServer server(HttpServer::respond(200));
    const QString connect = QStringLiteral("exec 3<>/dev/tcp/127.0.0.1/%1").arg(server.url().port());
    EXPECT_EQ(ChildProcess::run(QStringLiteral("bash"), {QStringLiteral("-c"), connect}).status, 0);
    EXPECT_NE(confined(connect).status, 0);
}

TEST_F(UpdateToolsConfine, it_has_no_sockets_and_no_other_processes) {
    if (!knowsSeccomp())
        GTEST_SKIP() << "This kernel has no seccomp.";
    const char *const deeds[] = {
        "import socket; socket.socket(socket.AF_UNIX)",
        "import socket; socket.socket(socket.AF_INET)",
        "import socket; socket.socket(socket.AF_NETLINK, socket.SOCK_RAW)",
        "import socket; socket.socketpair(socket.AF_UNIX, socket.SOCK_DGRAM)",
        "import os; os.kill(os.getppid(), 0)",
        "import os, resource; resource.prlimit(os.getppid(), resource.RLIMIT_NOFILE)",
    };
    for (const char *deed : deeds) {
        const QString command = QStringLiteral("/usr/bin/python3 -c '%1'; true").arg(QString::fromUtf8(deed));
        EXPECT_EQ(ChildProcess::run(QStringLiteral("bash"), {QStringLiteral("-c"), command}).errors, "")
            << deed;
        EXPECT_TRUE(confined(command).errors.contains("PermissionError")) << deed;
    }
}

TEST_F(UpdateToolsConfine, memory_time_and_the_size_of_a_file_are_limited) {
    EXPECT_EQ(confined(QStringLiteral("ulimit -v; ulimit -f; ulimit -t")).output, "2097152\n1048576\n120\n");
}

TEST_F(UpdateToolsConfine, what_unpacks_a_hostile_image_is_confined) {
    if (!mayMount() || !knowsLandlock())
        GTEST_SKIP() << "This machine does not let a test exchange a program, or has no Landlock.";
    const QString script = addScript(QStringLiteral("hostile"), "true");
    write(QStringLiteral("hostile"), "#!/bin/bash\necho x >'" + QFile::encodeName(folder()) +
                                         "/outside'\n"
                                         "cp '" +
                                         QFile::encodeName(folder()) + "/secret' '" +
                                         QFile::encodeName(folder()) +
                                         "/stolen'\n"
                                         "echo '-rw-r--r-- 0/0 1 2026-01-01 00:00 squashfs-root/x'\n");
    const QStringList attach{QStringLiteral("attach"),      path(QStringLiteral("disk.dmg")),
                             QStringLiteral("-nobrowse"),   QStringLiteral("-quiet"),
                             QStringLiteral("-mountpoint"), path(QStringLiteral("point"))};
    const auto exchange = QStringLiteral("mount --bind '%1' \"$(command -v unsquashfs)\" && \"$0\" \"$@\"");
    const auto result =
        ChildProcess::run(QStringLiteral("unshare"),
                          QStringList{QStringLiteral("-rm"), QStringLiteral("bash"), QStringLiteral("-c"),
                                      exchange.arg(script), files().tool(QStringLiteral("hdiutil"))} +
                              attach);
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_FALSE(exists(QStringLiteral("outside")));
    EXPECT_FALSE(exists(QStringLiteral("stolen")));
}

} // namespace pavonel::test
