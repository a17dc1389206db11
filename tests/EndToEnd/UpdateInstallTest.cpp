#include "EndToEnd/ReleaseFixture.h"
#include "EndToEnd/Remote.h"
#include "support/AccessibilityBus.h"
#include "support/MessageBus.h"
#include "support/XServer.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QFile>

#include <atomic>
#include <csignal>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

/// From one release to the next, with nothing in between but what a user has.
class UpdateInstall : public ReleaseFixture {
protected:
    UpdateInstall() { shell("make_release 1.9.0; install_release 1.9.0"); }

    QByteArray installedVersion() {
        return ChildProcess::run(installed() + QStringLiteral("/pavonel"), {QStringLiteral("--version")},
                                 home.environment())
            .output;
    }

    /// Every condition must hold at the same moment; of the old process nothing is left then.
    bool newVersionRuns(const char *version) {
        return waitUntil([&] {
            return read("Applications/Pavonel.app/version") == QByteArray(version) + '\n' &&
                   processes().size() == 1 &&
                   !exists(QByteArray("cache/pavonel/tmp/Pavonel-staged-") + version + ".app");
        });
    }

    void expectNewVersionEnds() {
        const auto running = processes();
        ASSERT_EQ(running.size(), 1);
        ASSERT_GT(running[0], 1);
        ::kill(static_cast<pid_t>(running[0]), SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return processes().empty(); }));
    }

    const QByteArrayList success{"current version: 1.9.0", "available: 1.10.0 — installing",
                                 "verified and staged; replacing on exit"};
};

} // namespace

TEST_F(UpdateInstall, the_next_release_takes_the_place_of_the_last_and_runs) {
    shell("make_release 1.10.0");
    EXPECT_EQ(installedVersion(), "pavonel 1.9.0\n");
    const auto update = updateNow();
    EXPECT_EQ(update.status, 0) << update.errors.toStdString();
    EXPECT_EQ(update.lines, success);
    ASSERT_TRUE(newVersionRuns("1.10.0")) << update.errors.toStdString();
    EXPECT_EQ(installedVersion(), "pavonel 1.10.0\n");
    EXPECT_EQ(shell("unpack 1.10.0; diff -r image/Pavonel.app \"$installed\""), "");
    expectNewVersionEnds();
}

TEST_F(UpdateInstall, the_new_version_comes_up_on_the_desktop) {
    const XServer desktop;
    shell("make_release 1.10.0");
    home.environment().remove(QStringLiteral("QT_QPA_PLATFORM"));
    home.environment().insert(QStringLiteral("DISPLAY"), QString::fromLatin1(desktop.display()));
    write("config/pavonel/defaults.json",
          R"({"didOnboard": true, "launchAtLogin": false, "autoUpdate": false, "microInterval": 2,
              "preNotifySeconds": 0, "soundEnabled": false, "onBreakStartScript": "touch \"$HOME/break\""})");
    EXPECT_EQ(updateNow().lines, success);
    ASSERT_TRUE(newVersionRuns("1.10.0"));
    EXPECT_TRUE(waitUntil([&] { return exists("break"); }))
        << "it does not count, or does not find its tools";
    expectNewVersionEnds();
}

TEST_F(UpdateInstall, a_running_copy_gives_way_to_the_version_that_the_command_line_put_in_its_place) {
    const MessageBus bus;
    home.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    const Remote remote(home.environment());
    ChildProcess old(installed() + QStringLiteral("/pavonel"), {}, home.environment());
    ASSERT_TRUE(remote.waitForIt());
    shell("make_release 1.10.0");
    EXPECT_EQ(updateNow().lines, success);
    ASSERT_TRUE(waitUntil([&] { return !old.isRunning(); }));
    EXPECT_EQ(old.process().exitCode(), 0) << old.process().readAllStandardError().toStdString();
    ASSERT_TRUE(remote.waitForIt());
    ASSERT_TRUE(newVersionRuns("1.10.0"));
    expectNewVersionEnds();
}

TEST_F(UpdateInstall, the_update_card_installs_the_next_release_and_restarts) {
    shell("make_release 1.10.0");
    const XServer desktop;
    const MessageBus bus;
    QProcessEnvironment &environment = home.environment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(desktop.display()));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    environment.insert(QStringLiteral("PYTHONDONTWRITEBYTECODE"), QStringLiteral("1"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    const AccessibilityBus accessibility(environment);
    write("config/pavonel/defaults.json", R"({"launchAtLogin": false})"); // a first run, with its check
    const ChildProcess program(installed() + QStringLiteral("/pavonel"), {}, environment);
    const QString script = QStringLiteral(PAVONEL_SOURCE_DIR "/tests/EndToEnd/settings-road/install.py");
    ChildProcess user(QStringLiteral("/usr/bin/python3"),
                      {script, QStringLiteral("1.9.0"), QStringLiteral("1.10.0")}, environment);
    ASSERT_TRUE(waitUntil([&] { return !user.isRunning(); }));
    ASSERT_EQ(user.process().exitCode(), 0) << user.process().readAllStandardError().toStdString();
    ASSERT_TRUE(newVersionRuns("1.10.0"));
    EXPECT_EQ(shell("unpack 1.10.0; diff -r image/Pavonel.app \"$installed\""), "");
    expectNewVersionEnds();
}

TEST_F(UpdateInstall, one_update_follows_another) {
    shell("make_release 1.10.0");
    EXPECT_EQ(updateNow().lines, success);
    ASSERT_TRUE(newVersionRuns("1.10.0"));
    expectNewVersionEnds();
    shell("make_release 2");
    EXPECT_EQ(updateNow().lines, QByteArrayList({"current version: 1.10.0", "available: 2 — installing",
                                                 "verified and staged; replacing on exit"}));
    ASSERT_TRUE(newVersionRuns("2"));
    EXPECT_EQ(installedVersion(), "pavonel 2\n");
}

TEST_F(UpdateInstall, at_no_moment_is_there_no_copy) {
    shell("make_release 1.10.0");
    std::atomic<bool> ended = false;
    std::atomic<int> missing = 0;
    const QByteArray program = QFile::encodeName(installed() + QStringLiteral("/pavonel"));
    std::thread watcher([&] {
        while (!ended)
            missing += ::access(program.constData(), X_OK) != 0;
    });
    EXPECT_EQ(updateNow().lines, success);
    EXPECT_TRUE(newVersionRuns("1.10.0"));
    ended = true;
    watcher.join();
    EXPECT_EQ(missing, 0);
}

TEST_F(UpdateInstall, it_succeeds_in_any_environment) {
    shell("make_release 1.10.0; echo 'touch \"$HOME/evil\"' >startup; mkdir bin\n"
          "for tool in rm cp mv find sort cat bash sleep env; do echo 'touch \"$HOME/evil\"' >bin/$tool; "
          "done; chmod +x "
          "bin/*");
    const std::pair<const char *, QString> variables[] = {
        {"PATH", path("bin")},
        {"POSIXLY_CORRECT", QStringLiteral("1")},
        {"BASH_ENV", path("startup")},
        {"ENV", path("startup")},
        {"CDPATH", path("")},
        {"IFS", QStringLiteral("/")},
        {"SHELLOPTS", QStringLiteral("noexec")},
        {"BASH_FUNC_rm%%", QStringLiteral("() { touch \"$HOME/evil\"; }")}};
    const QProcessEnvironment usual = home.environment();
    for (const auto &[name, value] : variables)
        home.environment().insert(QString::fromUtf8(name), value);
    const mode_t mask = ::umask(0);
    const auto update = updateNow();
    ::umask(mask);
    home.environment() = usual;
    EXPECT_EQ(update.lines, success) << update.errors.toStdString();
    ASSERT_TRUE(newVersionRuns("1.10.0"));
    EXPECT_FALSE(exists("evil"));
    EXPECT_EQ(shell("unpack 1.10.0; diff -r image/Pavonel.app \"$installed\"\n"
                    "diff <(cd image/Pavonel.app; find . -printf '%m %p\\n' | sort) "
                    "<(cd \"$installed\"; find . -printf '%m %p\\n' | sort)\n"
                    "ls -A Applications"),
              "Pavonel.app\n");
    EXPECT_TRUE(readFile(QStringLiteral("/proc/%1/environ").arg(processes().at(0)))
                    .split('\0')
                    .contains("PATH=" + QFile::encodeName(path("bin"))))
        << "what the user set is the program's again";
}

TEST_F(UpdateInstall, the_same_release_is_up_to_date) {
    const QByteArray before = fingerprint();
    const auto update = updateNow();
    EXPECT_EQ(update.status, 0);
    EXPECT_EQ(update.lines, QByteArrayList({"current version: 1.9.0", "up to date"}));
    EXPECT_EQ(fingerprint(), before);
    EXPECT_EQ(server.requests().size(), 1) << "only the feed was asked for";
}

TEST_F(UpdateInstall, an_older_release_is_up_to_date) {
    shell("make_release 1.8.99");
    const auto update = updateNow();
    EXPECT_EQ(update.status, 0);
    EXPECT_EQ(update.lines.last(), "up to date");
    EXPECT_EQ(installedVersion(), "pavonel 1.9.0\n");
}

TEST_F(UpdateInstall, a_name_with_a_space_and_an_apostrophe_is_a_fine_place) {
    shell("make_release 1.10.0; mkdir \"Applications/it's mine\"\n"
          "mv Applications/Pavonel.app \"Applications/it's mine/My Pavonel.app\"");
    ChildProcess program(path("Applications/it's mine/My Pavonel.app/pavonel"),
                         {QStringLiteral("--update-now")}, home.environment());
    ASSERT_TRUE(waitUntil([&] { return !program.isRunning(); }));
    EXPECT_EQ(program.process().readAllStandardOutput(), success.join('\n') + '\n');
    EXPECT_TRUE(waitUntil([&] {
        return read("Applications/it's mine/My Pavonel.app/version") == "1.10.0\n" && processes().size() == 1;
    }));
}

} // namespace pavonel::test
