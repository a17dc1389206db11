#include "Platform/Linux/Applications/LinuxApplications.h"

#include "support/ChildProcess.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <algorithm>
#include <ctime>

#include <gtest/gtest.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

const QDeadlineTimer noHurry(QDeadlineTimer::Forever);

/// A folder that looks like /proc.
class FakeProcesses {
public:
    QByteArray root() const { return folder_.path().toLocal8Bit(); }

    void add(int id, const QString &executable, const QByteArray &unit = {}) {
        QDir(folder_.path()).mkdir(QString::number(id));
        QFile::link(executable, path(id, "exe"));
        write(path(id, "cmdline"), executable.toLocal8Bit() + '\0');
        if (!unit.isEmpty())
            write(path(id, "cgroup"), "0::/user.slice/app.slice/" + unit + '\n');
    }
    void remove(int id) { QDir(folder_.filePath(QString::number(id))).removeRecursively(); }

    /// Another process under the number of one that ended: its folder is another one.
    void replace(int id, const QString &executable) {
        add(id + 1'000'000, executable);
        remove(id);
        QDir(folder_.path()).rename(QString::number(id + 1'000'000), QString::number(id));
    }
    void run(int id, const QString &executable) {
        QFile::remove(path(id, "exe"));
        QFile::link(executable, path(id, "exe"));
        write(path(id, "cmdline"), executable.toLocal8Bit() + '\0');
    }
    QString path(int id, const char *file) const {
        return folder_.filePath(QStringLiteral("%1/%2").arg(QString::number(id), QString::fromLatin1(file)));
    }

private:
    static void write(const QString &path, const QByteArray &contents) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QTemporaryDir folder_;
};

QString baseName(const ProcessFolder &process) {
    const auto executable = process.executable();
    return executable ? QFileInfo(QString::fromLocal8Bit(*executable)).fileName() : QString();
}

QStringList identifiers(const std::vector<Application> &applications) {
    QStringList result;
    for (const Application &application : applications)
        result.append(application.bundleIdentifier);
    return result;
}

const QString recording = QStringLiteral("com.apple.screencaptureui");
const QString sharing = QStringLiteral("com.apple.ScreenSharing");

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

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
    LinuxApplications &applications() {
        if (!applications_)
            applications_ = std::make_unique<LinuxApplications>(
                nullptr, nullptr,
                LinuxApplications::Folders{
                    .processes = "/proc",
                    .desktopFiles = {folder_.filePath(QStringLiteral("applications"))}});
        return *applications_;
    }
    void install(const QString &identifier, const QString &program) {
        QDir(folder_.path()).mkpath(QStringLiteral("applications"));
        QFile file(folder_.filePath(QStringLiteral("applications/%1.desktop").arg(identifier)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\nExec=" + program.toLocal8Bit() + " %U\n");
    }

private:
    QTemporaryDir folder_;
    std::unique_ptr<LinuxApplications> applications_;
};

const QString sleepProgram = QStringLiteral("/usr/bin/sleep");
const QString python = QStringLiteral("/usr/bin/python3");

} // namespace

TEST(ProcessTable, only_new_processes_are_opened) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/a"));
    processes.add(20, QStringLiteral("/usr/bin/b"));
    ProcessTable table(processes.root(), baseName);
    table.refresh(noHurry);
    EXPECT_EQ(table.opened(), 2);
    table.refresh(noHurry);
    processes.add(30, QStringLiteral("/usr/bin/c"));
    table.refresh(noHurry);
    EXPECT_EQ(table.opened(), 3);
    processes.remove(20);
    table.refresh(noHurry);
    EXPECT_EQ(table.opened(), 3);
    EXPECT_EQ(identifiers(table.applications()), (QStringList{QStringLiteral("a"), QStringLiteral("c")}));
}

TEST(ProcessTable, a_number_given_again_is_another_process) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/a"));
    ProcessTable table(processes.root(), baseName);
    table.refresh(noHurry);
    processes.replace(10, QStringLiteral("/usr/bin/b"));
    table.refresh(noHurry);
    EXPECT_EQ(identifiers(table.applications()), QStringList{QStringLiteral("b")});
}

TEST(ProcessTable, a_launcher_becomes_what_it_launches) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/bin/sh"));
    ProcessTable table(processes.root(), baseName);
    table.refresh(noHurry);
    processes.run(10, QStringLiteral("/usr/bin/game"));
    table.refresh(noHurry);
    EXPECT_EQ(identifiers(table.applications()), QStringList{QStringLiteral("game")});
}

TEST(ProcessTable, an_application_lasts_as_long_as_any_of_its_processes) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/a"));
    processes.add(20, QStringLiteral("/usr/bin/a"));
    ProcessTable table(processes.root(), baseName);
    table.refresh(noHurry);
    ASSERT_EQ(table.applications().size(), 1);
    EXPECT_EQ(table.applications().front().processId, 10);
    processes.remove(10);
    table.refresh(noHurry);
    ASSERT_EQ(table.applications().size(), 1);
    EXPECT_EQ(table.applications().front().processId, 20);
    processes.remove(20);
    table.refresh(noHurry);
    EXPECT_TRUE(table.applications().empty());
}

TEST(ProcessTable, a_process_that_vanishes_between_listing_and_reading_is_none) {
    FakeProcesses processes;
    for (int id = 1; id <= 50; ++id)
        processes.add(id, QStringLiteral("/usr/bin/a"));
    ProcessTable table(processes.root(), [&](const ProcessFolder &process) {
        processes.remove(process.id()); // and the one that is next
        processes.remove(process.id() - 1);
        return baseName(process);
    });
    table.refresh(noHurry);
    table.refresh(noHurry);
    EXPECT_TRUE(table.applications().empty());
}

TEST(ProcessTable, a_folder_that_is_not_there_has_no_processes) {
    ProcessTable table("/nonexistent/proc", baseName);
    table.refresh(noHurry);
    EXPECT_TRUE(table.applications().empty());
}

TEST(ProcessTable, two_thousand_processes_are_taken_up_without_a_stall) {
    FakeProcesses processes;
    for (int id = 1; id <= 2000; ++id)
        processes.add(id, QStringLiteral("/usr/bin/p%1").arg(id % 25));
    ProcessTable table(processes.root(), baseName);
    double longest = 0;
    for (int tick = 0; tick < 1000 && table.opened() < 2000; ++tick) {
        const double before = processorSeconds();
        table.refresh(QDeadlineTimer(8, Qt::PreciseTimer));
        longest = std::max(longest, processorSeconds() - before);
    }
    EXPECT_EQ(table.opened(), 2000);
    EXPECT_EQ(table.applications().size(), 25);
    EXPECT_LT(longest, 0.050) << "seconds of processor time in one go";
}

TEST(ProcessTable, the_newest_of_many_processes_come_first) {
    FakeProcesses processes;
    for (int id = 1; id <= 20; ++id)
        processes.add(id, QStringLiteral("/usr/bin/p%1").arg(id));
    std::vector<ProcessId> order;
    ProcessTable table(processes.root(), [&](const ProcessFolder &process) {
        order.push_back(process.id());
        return QString();
    });
    table.refresh(noHurry);
    ASSERT_EQ(order.size(), 20);
    EXPECT_TRUE(std::is_sorted(order.rbegin(), order.rend()));
}

TEST_F(LinuxApplicationsTest, a_recorder_in_the_background_is_reported_while_it_runs) {
    EXPECT_FALSE(isRunning(recording));
    auto recorder = std::make_unique<ChildProcess>(
        copyOf(sleepProgram, QStringLiteral("simplescreenrecorder")), QStringList{QStringLiteral("300")});
    EXPECT_TRUE(waitUntil([&] { return isRunning(recording); }));
    recorder.reset();
    EXPECT_FALSE(isRunning(recording));
}

TEST_F(LinuxApplicationsTest, a_recorder_that_is_a_script_is_reported_too) {
    const QString script = copyOf(QStringLiteral("/dev/null"), QStringLiteral("kazam"));
    QFile file(script);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("import time; time.sleep(300)");
    file.close();
    const ChildProcess recorder(python, {script});
    EXPECT_TRUE(waitUntil([&] { return isRunning(recording); }));
}

TEST_F(LinuxApplicationsTest, an_ended_process_that_nobody_waited_for_does_not_run) {
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
    ASSERT_TRUE(process.process().waitForReadyRead(30'000))
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

TEST_F(LinuxApplicationsTest, the_identifier_is_that_of_the_desktop_file) {
    const QString program = copyOf(sleepProgram, QStringLiteral("pavonel-test-editor"));
    install(QStringLiteral("org.example.Editor"), program);
    const ChildProcess editor(program, {QStringLiteral("300")});
    EXPECT_TRUE(waitUntil([&] { return isRunning(QStringLiteral("org.example.Editor")); }));
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
    QDir(processes.path(30, "")).mkpath(QStringLiteral("root"));
    QFile info(processes.path(30, "root/.flatpak-info"));
    ASSERT_TRUE(info.open(QIODevice::WriteOnly));
    info.write("[Application]\nname=org.example.Boxed\nruntime=x\n");
    info.close();
    const QTemporaryDir files;
    QFile file(files.filePath(QStringLiteral("org.example.Viewer.desktop")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\nExec=flatpak run x\n");
    file.close();
    LinuxApplications applications(nullptr, nullptr,
                                   {.processes = processes.root(), .desktopFiles = {files.path()}});
    EXPECT_TRUE(waitUntil([&] {
        return identifiers(applications.running()) ==
               QStringList{QStringLiteral("org.example.Boxed"), QStringLiteral("org.example.Viewer")};
    }));
}

TEST_F(LinuxApplicationsTest, two_thousand_processes_are_no_stall) {
    const QString crowd = QStringLiteral("for i in $(seq 2000); do sleep 40 & done; echo done; wait");
    ChildProcess processes(QStringLiteral("setsid"), {QStringLiteral("sh"), QStringLiteral("-c"), crowd});
    ASSERT_TRUE(processes.process().waitForReadyRead(60'000));
    double longest = 0;
    for (int tick = 0; tick < 60; ++tick) {
        const double before = processorSeconds();
        applications().running();
        longest = std::max(longest, processorSeconds() - before);
    }
    ::kill(-static_cast<pid_t>(processes.process().processId()), SIGKILL);
    EXPECT_LT(longest, 0.050) << "seconds of processor time in one tick";
}

TEST_F(LinuxApplicationsTest, without_a_window_system_nothing_is_in_front) {
    EXPECT_FALSE(applications().frontmost());
    EXPECT_NE(applications().limitation(), QString());
}

} // namespace pavonel::test
