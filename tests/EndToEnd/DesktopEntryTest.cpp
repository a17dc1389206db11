#include "EndToEnd/Desktop.h"
#include "EndToEnd/HeadlessProgram.h"
#include "EndToEnd/Remote.h"
#include "support/MessageBus.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QFile>

#include <csignal>
#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString entryPath = QStringLiteral(PAVONEL_SOURCE_DIR "/packaging/org.pavonel.Pavonel.desktop");

/// A value of the entry; null when it is not there.
QString valueOf(const QString &group, const QString &key) {
    QFile entry(entryPath);
    EXPECT_TRUE(entry.open(QFile::ReadOnly));
    const QString text = QString::fromUtf8(entry.readAll());
    const qsizetype begin = text.indexOf(u'[' + group + QStringLiteral("]\n"));
    const QStringList lines =
        begin < 0 ? QStringList() : text.sliced(begin + 1).section(u'[', 0, 0).split(u'\n');
    for (const QString &line : lines) {
        if (line.startsWith(key + u'='))
            return line.sliced(key.size() + 1);
    }
    return {};
}

QString commandOf(const char *action) {
    return valueOf(QStringLiteral("Desktop Action ") + QString::fromUtf8(action), QStringLiteral("Exec"));
}

/// The service by which a bus starts the built program.
void installService(const QTemporaryDir &services) {
    QByteArray service =
        readFile(QStringLiteral(PAVONEL_SOURCE_DIR "/packaging/org.pavonel.Pavonel.service.in"));
    const QFileInfo built(QStringLiteral(PAVONEL_PROGRAM));
    service.replace("@CMAKE_INSTALL_FULL_BINDIR@", built.path().toUtf8());
    writeFile(services.filePath(QStringLiteral("org.pavonel.Pavonel.service")), service);
}

/// The program, and what a launcher can do to it by the commands of the entry.
struct DesktopEntry : testing::Test {
    DesktopEntry() {
        program.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        writeFile(program.storePath(), R"({"didOnboard": true, "longDuration": 1})");
    }

    void start() {
        program.start();
        ASSERT_TRUE(remote().waitForIt());
    }

    Remote remote() { return Remote(program.environment()); }
    void act(const char *action) { EXPECT_EQ(remote().run(commandOf(action)), 0) << action; }
    bool says(const QString &beginning) {
        return waitUntil([&] { return remote().statusLine().startsWith(beginning); });
    }

    MessageBus bus;
    HeadlessProgram program;
};

} // namespace

TEST_F(DesktopEntry, keeps_to_its_standard) {
    const auto result = ChildProcess::run(QStringLiteral("desktop-file-validate"), {entryPath});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
}

TEST_F(DesktopEntry, every_action_that_it_lists_has_a_name_and_a_command) {
    const QStringList actions =
        valueOf(QStringLiteral("Desktop Entry"), QStringLiteral("Actions")).split(u';', Qt::SkipEmptyParts);
    EXPECT_EQ(actions.size(), 4);
    for (const QString &action : actions) {
        EXPECT_NE(commandOf(action.toUtf8().constData()), QString()) << action.toStdString();
        EXPECT_NE(valueOf(QStringLiteral("Desktop Action ") + action, QStringLiteral("Name")), QString());
    }
}

TEST_F(DesktopEntry, a_micro_break_is_taken_and_skipped) {
    start();
    act("take-micro-break");
    EXPECT_TRUE(says(QStringLiteral("On break")));
    act("skip");
    EXPECT_TRUE(says(QStringLiteral("Micro break:")));
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(program.storedToday(QStringLiteral("skipped")), 1);
}

TEST_F(DesktopEntry, a_long_break_is_taken) {
    start();
    act("take-long-break");
    EXPECT_TRUE(says(QStringLiteral("Micro break:"))) << "it takes a second";
    EXPECT_TRUE(
        waitUntil([&] { return remote().menu().contains(QStringLiteral("Today: 1 breaks · 0 skipped")); }));
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(program.storedToday(QStringLiteral("long")), 1);
}

TEST_F(DesktopEntry, work_is_paused_and_resumed) {
    start();
    act("toggle-pause");
    EXPECT_TRUE(says(QStringLiteral("Paused")));
    act("toggle-pause");
    EXPECT_TRUE(says(QStringLiteral("Micro break:")));
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(DesktopEntry, an_unknown_action_does_nothing) {
    start();
    remote().run(QStringLiteral("gapplication action org.pavonel.Pavonel dance"));
    EXPECT_TRUE(says(QStringLiteral("Micro break:")));
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(DesktopEntry, where_the_program_does_not_run_the_bus_starts_it_and_the_action_is_done) {
    const QTemporaryDir services;
    installService(services);
    const MessageBus starter(services.path(), program.environment());
    program.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), starter.address());

    act("take-micro-break");
    EXPECT_TRUE(says(QStringLiteral("On break")));
    act("skip");
    EXPECT_TRUE(says(QStringLiteral("Micro break:")));
    remote().choose(QStringLiteral("Quit Pavonel"));
    EXPECT_TRUE(waitUntil([&] { return program.storedToday(QStringLiteral("skipped")) == 1; }));
}

/// A bus that starts the program on a desktop, by its service.
struct DesktopEntryOnScreen : testing::Test {
    DesktopEntryOnScreen() {
        installService(services);
        starter.emplace(services.path(), desktop.environment());
        desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), starter->address());
    }
    ~DesktopEntryOnScreen() override {
        menu().choose(QStringLiteral("Quit Pavonel"));
        EXPECT_TRUE(waitUntil([this] { return desktop.overlays().empty(); }));
    }

    Remote menu() { return Remote(desktop.environment()); }
    void run(const char *command) { EXPECT_EQ(menu().run(QString::fromUtf8(command)), 0); }

    Desktop desktop;
    QTemporaryDir services;
    std::optional<MessageBus> starter;
};

/// The entry promises DBusActivatable: a menu then calls Activate and nothing else.
TEST_F(DesktopEntryOnScreen, a_menu_starts_the_program_silently_and_then_shows_its_settings) {
    run("gapplication launch org.pavonel.Pavonel");
    run("gapplication action org.pavonel.Pavonel take-micro-break");
    EXPECT_TRUE(waitUntil([&] { return desktop.overlays().size() == Desktop::screens; }));
    EXPECT_FALSE(desktop.shows("Pavonel"));
    run("gapplication launch org.pavonel.Pavonel");
    EXPECT_TRUE(waitUntil([&] { return desktop.shows("Pavonel"); }));
}

TEST_F(DesktopEntryOnScreen, a_menu_shows_the_settings_of_one_that_a_bars_question_started) {
    run("gdbus call --session --dest org.pavonel.Pavonel --object-path /org/pavonel/Pavonel "
        "--method org.freedesktop.DBus.Properties.GetAll org.pavonel.Pavonel1");
    run("gapplication launch org.pavonel.Pavonel");
    EXPECT_TRUE(waitUntil([&] { return desktop.shows("Pavonel"); }));
}

} // namespace pavonel::test
