#include "Platform/Linux/DetachedLauncher.h"

#include "Platform/GivenEnvironment.h"
#include "support/ToolFixture.h"

#include <QElapsedTimer>

#include <cerrno>

#include <sys/wait.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

class DetachedLauncherTest : public ToolFixture {
protected:
    DetachedLauncher launcher{files()};

    /// Starts a program that stays, and yields its process id.
    QString launchAlive() {
        EXPECT_TRUE(launcher.launch(addScript(QStringLiteral("stays"), leaveAlive), {}));
        EXPECT_TRUE(appears(QStringLiteral("alive.pid")));
        EXPECT_TRUE(waitUntil([this] { return status(alive(), QStringLiteral("Name")) == u"sleep"; }));
        return alive();
    }
    QString alive() const { return QString::fromLatin1(read(QStringLiteral("alive.pid")).trimmed()); }

    /// A line of /proc/PID/status, "SigBlk" for instance.
    static QString status(const QString &pid, const QString &name) {
        QFile file(QStringLiteral("/proc/%1/status").arg(pid));
        if (!file.open(QFile::ReadOnly))
            return {};
        for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
            if (line.startsWith(name + u':'))
                return line.sliced(name.size() + 1).trimmed();
        }
        return {};
    }

    /// The numbers of the files that a process has open.
    static QStringList filesOf(const QString &pid) {
        const QDir files(QStringLiteral("/proc/%1/fd").arg(pid));
        return files.entryList(QDir::System | QDir::Files | QDir::NoDotAndDotDot);
    }

    static bool haveChildren() { return ::waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD; }
};

} // namespace

TEST_F(DetachedLauncherTest, a_path_that_exists_is_started_with_exactly_these_arguments) {
    const QString program = addScript(QStringLiteral("a program"), recordArguments);
    addTool(QStringLiteral("a program"), "touch stand-in");
    EXPECT_TRUE(launcher.launch(program, {QStringLiteral("run"), QStringLiteral(" a 'b' \"c\" $d *"),
                                          QString(), QString::fromUtf8("Pfauenauge \xf0\x9f\xa6\x9a\n")}));
    EXPECT_EQ(recordedArguments(),
              (QByteArrayList{"run", " a 'b' \"c\" $d *", "", "Pfauenauge \xf0\x9f\xa6\x9a\n"}));
    EXPECT_FALSE(exists(QStringLiteral("stand-in")));
}

TEST_F(DetachedLauncherTest, our_own_tool_of_the_same_name_stands_in_for_a_path_that_does_not_exist) {
    addTool(QStringLiteral("gadget"), recordArguments);
    EXPECT_TRUE(launcher.launch(path(QStringLiteral("nowhere/gadget")), {QStringLiteral("-e")}));
    EXPECT_EQ(recordedArguments(), QByteArrayList{"-e"});
}

TEST_F(DetachedLauncherTest, a_program_that_is_nowhere_is_not_started) {
    EXPECT_FALSE(launcher.launch(path(QStringLiteral("nowhere/gadget")), {}));
    EXPECT_FALSE(haveChildren());
}

TEST_F(DetachedLauncherTest, a_path_that_is_not_absolute_is_not_started) {
    addTool(QStringLiteral("true"), "touch stand-in");
    EXPECT_FALSE(launcher.launch(QStringLiteral("true"), {}));
    EXPECT_FALSE(launcher.launch(QString(), {}));
}

TEST_F(DetachedLauncherTest, a_file_that_cannot_be_executed_is_not_started) {
    write(QStringLiteral("plain"), "text");
    EXPECT_FALSE(launcher.launch(path(QStringLiteral("plain")), {}));
    EXPECT_FALSE(launcher.launch(folder(), {}));
}

TEST_F(DetachedLauncherTest, an_argument_that_no_program_can_be_given_is_not_cut_short) {
    const QString program = addScript(QStringLiteral("script"), "touch started");
    EXPECT_FALSE(launcher.launch(program, {QStringLiteral("half").append(QChar(0)).append(u"a script")}));
    EXPECT_FALSE(launcher.launch(program, {QString(10'000'000, u'x')}));
    EXPECT_FALSE(exists(QStringLiteral("started")));
}

TEST_F(DetachedLauncherTest, a_started_program_inherits_no_open_file) {
    QFile open(path(QStringLiteral("open")));
    ASSERT_TRUE(open.open(QFile::WriteOnly));
    const int inheritable = ::dup(open.handle()); // without close-on-exec, as a careless library opens it
    const int far = ::dup2(open.handle(), 900);
    const QString pid = launchAlive();
    ::close(inheritable);
    ::close(far);
    // A program opens libraries while it loads, and closes them; what it inherited stays.
    const auto isLeftWithStandardFiles = [&pid] {
        return filesOf(pid) == QStringList{QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")};
    };
    EXPECT_TRUE(waitUntil(isLeftWithStandardFiles)) << filesOf(pid).join(u' ').toStdString();
}

TEST_F(DetachedLauncherTest, a_started_program_reads_nothing_and_nobody_reads_what_it_says) {
    const QString pid = launchAlive();
    for (int standard : {0, 1, 2}) {
        EXPECT_EQ(QFile::symLinkTarget(QStringLiteral("/proc/%1/fd/%2").arg(pid).arg(standard)),
                  QStringLiteral("/dev/null"));
    }
}

TEST_F(DetachedLauncherTest, a_started_program_works_although_our_own_standard_files_are_closed) {
    const pid_t child = ::fork();
    if (child == 0) {
        for (int standard : {0, 1, 2})
            ::close(standard);
        ::_exit(launcher.launch(addScript(QStringLiteral("stays"), leaveAlive), {}) ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    ASSERT_TRUE(appears(QStringLiteral("alive.pid")));
    EXPECT_EQ(QFile::symLinkTarget(QStringLiteral("/proc/%1/fd/1").arg(alive())),
              QStringLiteral("/dev/null"));
}

TEST_F(DetachedLauncherTest, a_started_program_has_a_session_of_its_own) {
    const pid_t pid = launchAlive().toInt();
    EXPECT_NE(::getsid(pid), ::getsid(0));
    EXPECT_NE(::getpgid(pid), ::getpgid(0));
}

TEST_F(DetachedLauncherTest, a_started_program_handles_every_signal_in_the_default_way) {
    sigset_t usual;
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &usual);
    const auto usualPipe = std::signal(SIGPIPE, SIG_IGN);
    const QString pid = launchAlive();
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, &usual, &after);
    std::signal(SIGPIPE, usualPipe);
    EXPECT_EQ(status(pid, QStringLiteral("SigBlk")).toULongLong(nullptr, 16), 0u);
    EXPECT_EQ(status(pid, QStringLiteral("SigIgn")).toULongLong(nullptr, 16), 0u);
    EXPECT_TRUE(sigismember(&after, SIGUSR1)) << "our own mask is as it was";
    EXPECT_FALSE(sigismember(&after, SIGUSR2));
}

TEST_F(DetachedLauncherTest, a_started_program_has_our_environment_and_working_folder) {
    qputenv("PAVONEL_TEST_MARK", "peacock blue");
    const QString program =
        addScript(QStringLiteral("script"), "echo \"$PAVONEL_TEST_MARK $OLDPWD\" >new; mv new seen");
    EXPECT_TRUE(launcher.launch(program, {}));
    ASSERT_TRUE(appears(QStringLiteral("seen")));
    EXPECT_EQ(read(QStringLiteral("seen")), "peacock blue " + QFile::encodeName(QDir::currentPath()) + '\n');
}

TEST_F(DetachedLauncherTest, a_started_program_does_not_get_what_we_set_for_ourselves) {
    qputenv("PAVONEL_TEST_GIVEN", "peacock blue");
    setForUsAlone("PAVONEL_TEST_GIVEN", "grey");
    setForUsAlone("PAVONEL_TEST_GIVEN", "black");
    setForUsAlone("PAVONEL_TEST_OWN", "white");
    const QString program = addScript(
        QStringLiteral("script"), "echo \"$PAVONEL_TEST_GIVEN ${PAVONEL_TEST_OWN-none}\" >new; mv new seen");
    EXPECT_TRUE(launcher.launch(program, {}));
    ASSERT_TRUE(appears(QStringLiteral("seen")));
    EXPECT_EQ(read(QStringLiteral("seen")), "peacock blue none\n");
    EXPECT_EQ(qgetenv("PAVONEL_TEST_GIVEN"), "black");
}

TEST_F(DetachedLauncherTest, a_started_program_does_not_get_what_was_meant_for_our_own_start) {
    qputenv("XDG_ACTIVATION_TOKEN", "token");
    qputenv("DESKTOP_STARTUP_ID", "id");
    const QString program =
        addScript(QStringLiteral("script"),
                  "echo \"${XDG_ACTIVATION_TOKEN-none} ${DESKTOP_STARTUP_ID-none}\" >new; mv new seen");
    EXPECT_TRUE(launcher.launch(program, {}));
    qunsetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("DESKTOP_STARTUP_ID");
    ASSERT_TRUE(appears(QStringLiteral("seen")));
    EXPECT_EQ(read(QStringLiteral("seen")), "none none\n");
}

TEST_F(DetachedLauncherTest, our_own_tools_come_first_on_the_search_path_only_where_asked_for) {
    const QByteArray usual = qgetenv("PATH");
    const QByteArray tools = QFile::encodeName(files().toolsFolder());
    const QByteArray ours = tools + ":/usr/bin:/bin:/usr/sbin:/sbin " + usual;
    const QString program =
        addScript(QStringLiteral("script"), "echo \"$PATH\" \"$PAVONEL_PATH\" >new; mv new \"$1\"");
    const auto pathsSeen = [&](const QString &name, ProcessLauncher::SearchPath searchPath) {
        EXPECT_TRUE(launcher.launch(program, {name}, searchPath));
        EXPECT_TRUE(appears(name));
        return read(name).trimmed();
    };
    EXPECT_EQ(pathsSeen(QStringLiteral("first"), ProcessLauncher::SearchPath::ownToolsFirst), ours);
    qputenv("PATH",
            tools + ':' + usual); // as a script of an earlier version has it, which starts the next one
    EXPECT_EQ(pathsSeen(QStringLiteral("second"), ProcessLauncher::SearchPath::usual), usual);
    EXPECT_EQ(pathsSeen(QStringLiteral("third"), ProcessLauncher::SearchPath::ownToolsFirst), ours);
    qputenv("PATH", usual);
}

TEST_F(DetachedLauncherTest, no_variable_leads_a_script_of_ours_astray) {
    addScript(QStringLiteral("evil"), "touch evil-ran");
    const std::pair<const char *, QByteArray> variables[] = {
        {"BASH_ENV", QFile::encodeName(path(QStringLiteral("evil")))},
        {"BASH_FUNC_touch%%", "() { true; }"},
        {"SHELLOPTS", "noexec"},
        {"POSIXLY_CORRECT", "1"},
        {"CDPATH", "/"},
        {"PATH", "/nonexistent"}};
    const QByteArray usual = qgetenv("PATH");
    for (const auto &[name, value] : variables)
        qputenv(name, value);
    const QByteArray script = "cd '" + QFile::encodeName(folder()) + "'; touch ran";
    EXPECT_TRUE(launcher.launch(QStringLiteral("/bin/bash"),
                                {QStringLiteral("-c"), QString::fromUtf8(script)},
                                ProcessLauncher::SearchPath::ownToolsFirst));
    for (const auto &[name, value] : variables)
        qunsetenv(name);
    qputenv("PATH", usual);
    EXPECT_TRUE(appears(QStringLiteral("ran")));
    EXPECT_FALSE(exists(QStringLiteral("evil-ran")));
}

TEST_F(DetachedLauncherTest, nothing_that_was_started_becomes_a_zombie_of_ours) {
    for (int n = 0; n < 20; ++n)
        EXPECT_TRUE(launcher.launch(QStringLiteral("/bin/true"), {}));
    EXPECT_FALSE(haveChildren());
    const QString pid = launchAlive();
    EXPECT_NE(status(pid, QStringLiteral("PPid")).toLongLong(), qint64{::getpid()});
    EXPECT_FALSE(haveChildren());
}

TEST_F(DetachedLauncherTest, a_started_program_outlives_us) {
    const QString program = addScript(QStringLiteral("stays"), leaveAlive);
    const pid_t us = ::fork();
    if (us == 0)
        ::_exit(launcher.launch(program, {}) ? 0 : 1);
    ASSERT_EQ(::waitpid(us, nullptr, 0), us);
    ASSERT_TRUE(appears(QStringLiteral("alive.pid")));
    EXPECT_EQ(::kill(alive().toInt(), 0), 0);
    EXPECT_NE(status(alive(), QStringLiteral("State")).at(0), u'Z');
}

TEST_F(DetachedLauncherTest, a_script_that_hangs_does_not_hold_us_up) {
    QElapsedTimer clock;
    clock.start();
    launchAlive(); // for 600 s
    EXPECT_LT(clock.elapsed(), 300'000);
}

TEST_F(DetachedLauncherTest, a_script_that_forks_leaves_nothing_to_us) {
    const QString program = addScript(QStringLiteral("forks"),
                                      "for n in 1 2 3; do (echo $n >new-$n; mv new-$n forked-$n) & done");
    EXPECT_TRUE(launcher.launch(program, {}));
    for (const char *name : {"forked-1", "forked-2", "forked-3"})
        EXPECT_TRUE(appears(QString::fromLatin1(name)));
    EXPECT_FALSE(haveChildren());
}

TEST_F(DetachedLauncherTest, a_script_that_prints_a_gigabyte_comes_to_its_end_unread) {
    const QString program =
        addScript(QStringLiteral("prints"),
                  "head -c 1000000000 /dev/zero && head -c 1000000 /dev/zero >&2 && touch done");
    EXPECT_TRUE(launcher.launch(program, {}));
    EXPECT_TRUE(appears(QStringLiteral("done")));
}

TEST_F(DetachedLauncherTest, says_that_scripts_are_handed_to_the_shell_or_that_nothing_can_run_them) {
    if (QFile::exists(QStringLiteral("/usr/bin/osascript"))) {
        EXPECT_EQ(launcher.limitation(), QString());
        return;
    }
    EXPECT_EQ(launcher.limitation(), QStringLiteral("The program that runs break scripts is missing."));
    addTool(QStringLiteral("osascript"), "true");
    EXPECT_EQ(launcher.limitation(),
              QStringLiteral("There is no AppleScript on this system: a script is handed to the shell."));
}

} // namespace pavonel::test
