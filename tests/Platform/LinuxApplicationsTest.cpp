#include "Platform/Linux/Applications/LinuxApplications.h"

#include "FakeProcesses.h"
#include "support/ChildProcess.h"
#include "support/RecorderTurn.h"
#include "support/VirtualMainLoop.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <ctime>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

const QString recording = QStringLiteral("com.apple.screencaptureui");
const QString obsStudio = QStringLiteral("com.obsproject.obs-studio");
const QString sharing = QStringLiteral("com.apple.ScreenSharing");

/// Copies of real programs under other names, and a desktop file folder of the test's own.
class LinuxApplicationsTest : public ::testing::Test {
protected:
    QString copyOf(const QString &program, const QString &name) {
        const QString path = folder_.filePath(name);
        QFile::copy(QFileInfo(program).canonicalFilePath(), path);
        return path;
    }
    bool isRunning(const QString &identifier) {
        return identifiers(applications().running()).contains(identifier);
    }
    std::unique_ptr<LinuxApplications> make() {
        return std::make_unique<LinuxApplications>(
            nullptr, nullptr,
            LinuxApplications::Folders{.processes = "/proc",
                                       .desktopFiles = {desktopFiles()},
                                       .programs = {folder_.path().toLocal8Bit()}},
            loop);
    }
    LinuxApplications &applications() {
        if (!applications_)
            applications_ = make();
        return *applications_;
    }
    QString desktopFiles() const { return folder_.filePath(QStringLiteral("applications")); }
    void install(const QString &identifier, const QString &program) {
        writeFile(desktopFiles() + QStringLiteral("/%1.desktop").arg(identifier),
                  "[Desktop Entry]\nType=Application\nExec=" + program.toLocal8Bit() + " %U\n");
    }

    QTemporaryDir folder_;
    VirtualMainLoop loop;

private:
    std::unique_ptr<LinuxApplications> applications_;
};

const QString sleepProgram = QStringLiteral("/usr/bin/sleep");
const QString python = QStringLiteral("/usr/bin/python3");

} // namespace

TEST_F(LinuxApplicationsTest, a_recorder_in_the_background_is_reported_while_it_runs) {
    const RecorderTurn turn;
    EXPECT_FALSE(isRunning(recording));
    auto recorder = std::make_unique<ChildProcess>(
        copyOf(sleepProgram, QStringLiteral("simplescreenrecorder")), QStringList{QStringLiteral("300")});
    EXPECT_TRUE(waitUntil([&] { return isRunning(recording); }));
    recorder.reset();
    EXPECT_FALSE(isRunning(recording));
}

TEST_F(LinuxApplicationsTest, a_recorder_that_is_a_script_is_reported_too) {
    const RecorderTurn turn;
    const QString script = copyOf(QStringLiteral("/dev/null"), QStringLiteral("kazam"));
    writeFile(script, "import time; time.sleep(300)");
    const ChildProcess recorder(python, {script});
    EXPECT_TRUE(waitUntil([&] { return isRunning(recording); }));
}

TEST_F(LinuxApplicationsTest, a_recorder_that_a_program_turns_into_late_is_noticed_within_two_looks) {
    constexpr int untilItIsOld = 10; // looks
    for (const bool isThereBefore : {true, false}) {
        ChildProcess shell(QStringLiteral("sh"),
                           {QStringLiteral("-c"), QStringLiteral("read ready; exec \"$0\" 300"),
                            folder_.filePath(QStringLiteral("obs"))},
                           QProcessEnvironment::systemEnvironment());
        for (int look = 0; look < untilItIsOld; ++look)
            EXPECT_FALSE(isRunning(obsStudio));
        const QString recorder = copyOf(sleepProgram, QStringLiteral("obs"));
        if (isThereBefore) {
            QCoreApplication::processEvents();
            isRunning(obsStudio);
        }
        shell.process().write("\n");
        const QString executable = QStringLiteral("/proc/%1/exe").arg(shell.process().processId());
        ASSERT_TRUE(waitUntil([&] { return QFile::symLinkTarget(executable) == recorder; }));
        isRunning(obsStudio);
        EXPECT_TRUE(isRunning(obsStudio));
        shell.end();
        QFile::remove(recorder);
    }
}

TEST_F(LinuxApplicationsTest, an_ended_process_that_nobody_waited_for_does_not_run) {
    const RecorderTurn turn;
    const QString path = copyOf(sleepProgram, QStringLiteral("peek"));
    const ChildProcess parent(QStringLiteral("sh"),
                              {QStringLiteral("-c"), path + QStringLiteral(" 3 & exec /usr/bin/sleep 300")});
    EXPECT_TRUE(waitUntil([&] { return isRunning(recording); }));
    EXPECT_TRUE(waitUntil([&] { return !isRunning(recording); }));
}

TEST_F(LinuxApplicationsTest, a_remote_desktop_counts_only_while_somebody_looks) {
    const QString server = copyOf(python, QStringLiteral("krfb"));
    ChildProcess process(
        server,
        {QStringLiteral("-c"), QStringLiteral("import socket,time\ns=socket.create_server(('127.0.0.1',0))\n"
                                              "print(s.getsockname()[1],flush=True)\nc=s.accept()[0]\n"
                                              "while c.recv(1): pass\nc.close()\ntime.sleep(300)")});
    ASSERT_TRUE(process.process().waitForReadyRead(generousTimeout))
        << process.process().readAllStandardError().toStdString();
    const auto port = process.process().readLine().trimmed().toUShort();
    waitUntil([&] { return isRunning(sharing); }, 1000);
    EXPECT_FALSE(isRunning(sharing));
    QTcpSocket viewer;
    viewer.connectToHost(QStringLiteral("127.0.0.1"), port);
    EXPECT_TRUE(waitUntil([&] { return isRunning(sharing); }));
    viewer.disconnectFromHost();
    EXPECT_TRUE(waitUntil([&] { return !isRunning(sharing); }));
}

TEST_F(LinuxApplicationsTest, there_may_be_more_as_long_as_a_remote_desktop_waits_for_viewers) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/krfb"));
    processes.tellLast(10);
    LinuxApplications applications(nullptr, nullptr, {.processes = processes.root(), .desktopFiles = {}},
                                   loop);
    const auto ask = [&](int times) {
        for (int time = 0; time < times; ++time)
            (void)applications.running();
    };
    ask(20);
    EXPECT_TRUE(applications.mayRunMore());
    processes.remove(10);
    ask(20);
    EXPECT_FALSE(applications.mayRunMore());
}

TEST_F(LinuxApplicationsTest, a_remote_desktop_whose_viewers_cannot_be_told_does_not_count) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/krfb"));
    processes.add(20, QStringLiteral("/usr/bin/obs"));
    LinuxApplications applications(nullptr, nullptr, {.processes = processes.root(), .desktopFiles = {}},
                                   loop);
    EXPECT_TRUE(waitUntil([&] { return identifiers(applications.running()) == QStringList{obsStudio}; }));
}

TEST_F(LinuxApplicationsTest, the_identifier_is_that_of_the_desktop_file) {
    const QString program = copyOf(sleepProgram, QStringLiteral("pavonel-test-editor"));
    install(QStringLiteral("org.example.Editor"), program);
    const ChildProcess editor(program, {QStringLiteral("300")});
    EXPECT_TRUE(waitUntil([&] { return isRunning(QStringLiteral("org.example.Editor")); }));
}

TEST_F(LinuxApplicationsTest, malformed_desktop_files_beside_it_do_no_harm) {
    const QString program = copyOf(sleepProgram, QStringLiteral("pavonel-test-editor"));
    const QString nonsense = QStringLiteral("\n[[]\n=\nExec=\"'\\\n\xfe");
    install(QStringLiteral("broken"), nonsense);
    install(QStringLiteral("huge"), QString(200'000, u'%'));
    install(QStringLiteral("empty"), QString());
    install(QStringLiteral("org.example.Editor"), program);
    const ChildProcess editor(program, {QStringLiteral("300")});
    EXPECT_TRUE(waitUntil([&] { return isRunning(QStringLiteral("org.example.Editor")); }));
    EXPECT_FALSE(isRunning(QStringLiteral("broken")));
    EXPECT_FALSE(isRunning(QStringLiteral("huge")));
    EXPECT_FALSE(isRunning(QStringLiteral("empty")));
}

TEST_F(LinuxApplicationsTest, an_application_installed_while_it_runs_is_recognised) {
    const QString program = copyOf(sleepProgram, QStringLiteral("pavonel-test-editor"));
    install(QStringLiteral("first"), QStringLiteral("other"));
    const ChildProcess editor(program, {QStringLiteral("300")});
    EXPECT_FALSE(isRunning(QStringLiteral("org.example.Editor")));
    install(QStringLiteral("org.example.Editor"), program);
    EXPECT_TRUE(waitUntil([&] { return isRunning(QStringLiteral("org.example.Editor")); }));
}

TEST_F(LinuxApplicationsTest, a_unit_names_a_program_that_no_desktop_file_names) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/opt/x/bin"), "app-gnome-org.example.Viewer-10.scope");
    processes.add(20, QStringLiteral("/opt/y/bin"), "app-gnome-org.example.Unknown-20.scope");
    processes.add(30, QStringLiteral("/app/bin/z"));
    writeFile(processes.path(30, "root/.flatpak-info"), "[Application]\nname=org.example.Boxed\nruntime=x\n");
    const QTemporaryDir files;
    writeFile(files.filePath(QStringLiteral("org.example.Viewer.desktop")),
              "[Desktop Entry]\nType=Application\nExec=flatpak run x\n");
    LinuxApplications applications(nullptr, nullptr,
                                   {.processes = processes.root(), .desktopFiles = {files.path()}}, loop);
    EXPECT_TRUE(waitUntil([&] {
        return identifiers(applications.running()) ==
               QStringList{QStringLiteral("org.example.Boxed"), QStringLiteral("org.example.Viewer")};
    }));
}

TEST_F(LinuxApplicationsTest, a_sandbox_with_a_pipe_in_place_of_its_description_holds_nobody_up) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/obs"));
    processes.add(20, QStringLiteral("/app/bin/z"));
    QDir(processes.path(20, "")).mkpath(QStringLiteral("root"));
    ASSERT_EQ(::mkfifo(processes.path(20, "root/.flatpak-info").toLocal8Bit().constData(), 0600), 0);
    LinuxApplications applications(nullptr, nullptr, {.processes = processes.root(), .desktopFiles = {}},
                                   loop);
    EXPECT_TRUE(waitUntil([&] { return identifiers(applications.running()) == QStringList{obsStudio}; }));
}

TEST_F(LinuxApplicationsTest, a_live_screen_cast_is_reported_as_a_recording) {
    struct Casts final : ScreenCasts {
        bool live = false;
        bool anyLive() override { return live; }
    };
    FakeProcesses none;
    auto given = std::make_unique<Casts>();
    Casts &casts = *given;
    LinuxApplications applications(nullptr, std::move(given), {.processes = none.root(), .desktopFiles = {}},
                                   loop);
    EXPECT_EQ(identifiers(applications.running()), QStringList());
    casts.live = true;
    EXPECT_EQ(identifiers(applications.running()), QStringList{recording});
}

TEST_F(LinuxApplicationsTest, the_window_in_front_is_known_by_its_class_and_a_recorder_by_its_program) {
    struct Front final : FrontWindowSource {
        FrontWindow window;
        std::optional<FrontWindow> frontWindow() override { return window; }
        QString limitation() const override { return {}; }
    };
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/pavonel-test-office"));
    processes.add(20, QStringLiteral("/usr/bin/obs"));
    install(QStringLiteral("office"), QStringLiteral("pavonel-test-office"));
    install(QStringLiteral("office-calc"), QStringLiteral("pavonel-test-office --calc"));
    auto given = std::make_unique<Front>();
    Front &front = *given;
    LinuxApplications applications(std::move(given), nullptr,
                                   {.processes = processes.root(), .desktopFiles = {desktopFiles()}}, loop);
    const auto isFront = [&](ProcessId process, const char *windowClass, const QString &identifier) {
        front.window = {1, process, QString::fromLatin1(windowClass), {}};
        return waitUntil([&] { return applications.frontmost()->bundleIdentifier == identifier; });
    };
    EXPECT_TRUE(isFront(10, "Office", QStringLiteral("office")));
    EXPECT_TRUE(isFront(10, "Office-Calc", QStringLiteral("office-calc")));
    EXPECT_TRUE(isFront(10, "unknown", QStringLiteral("office")));
    EXPECT_TRUE(isFront(0, "Office-Calc", QStringLiteral("office-calc"))) << "no process is told";
    EXPECT_TRUE(isFront(20, "Office", obsStudio));
    EXPECT_TRUE(isFront(0, "unknown", QString()));
}

TEST_F(LinuxApplicationsTest, two_thousand_processes_are_no_stall) {
    const QString crowd = QStringLiteral("for i in $(seq 2000); do sleep 400 & done; echo done; wait");
    ChildProcess processes(QStringLiteral("setsid"), {QStringLiteral("sh"), QStringLiteral("-c"), crowd});
    ASSERT_TRUE(processes.process().waitForReadyRead(generousTimeout));
    const auto longestTick = [this] {
        double longest = 0;
        const auto anew = make();
        for (int tick = 0; tick < 60; ++tick) {
            const double before = processorSeconds();
            anew->running();
            longest = std::max(longest, processorSeconds() - before);
        }
        return longest;
    };
    // Among busy neighbours any one may take longer; what is a stall by itself is one in each round.
    std::array<double, 5> rounds{};
    std::ranges::generate(rounds, longestTick);
    ::kill(-static_cast<pid_t>(processes.process().processId()), SIGKILL);
    EXPECT_LT(std::ranges::min(rounds), 0.050) << "seconds of processor time in one tick";
}

TEST_F(LinuxApplicationsTest, without_a_window_system_nothing_is_in_front) {
    EXPECT_FALSE(applications().frontmost());
    EXPECT_NE(applications().limitation(), QString());
}

} // namespace pavonel::test
