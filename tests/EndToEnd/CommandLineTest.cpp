#include "EndToEnd/HeadlessProgram.h"
#include "support/files.h"

#include <QDir>
#include <QFile>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString loginStatus = QStringLiteral("--login-status");
const QString unregisterLoginItem = QStringLiteral("--unregister-login-item");
const QString updateNow = QStringLiteral("--update-now");
const QString help = QStringLiteral("--help");
const QString version = QStringLiteral("--version");

constexpr char noDisplay[] = "pavonel: no display can be opened; start it from within a desktop session\n";

/// As over a remote shell: no display, no message bus.
struct CommandLineTest : testing::Test {
    CommandLineTest() { program.environment().remove(QStringLiteral("QT_QPA_PLATFORM")); }

    void expect(const QStringList &arguments, const QByteArray &output) const {
        const auto result = program.run(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, output);
        EXPECT_EQ(result.errors, "");
    }

    /// The one line of a start that fails.
    QByteArray refusal(const QStringList &arguments) const {
        const auto result = program.run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.toStdString();
        EXPECT_TRUE(result.errors.startsWith("pavonel: ")) << result.errors.toStdString();
        return result.errors;
    }

    void expectNoStart(const QByteArray &complaint, const QStringList &arguments = {}) const {
        EXPECT_EQ(refusal(arguments), complaint);
    }

    void choosePlatform(const char *name) {
        program.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QString::fromUtf8(name));
    }

    void startOnceSoThatItRegisters() {
        program.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        program.start();
        ASSERT_EQ(program.end(SIGTERM), 0);
        program.environment().remove(QStringLiteral("QT_QPA_PLATFORM"));
    }

    HeadlessProgram program;
};

} // namespace

TEST_F(CommandLineTest, the_login_status_is_disabled_before_the_first_start) {
    expect({loginStatus}, "disabled\n");
}

TEST_F(CommandLineTest, the_first_start_enables_the_login_item_and_unregistering_disables_it) {
    startOnceSoThatItRegisters();
    expect({loginStatus}, "enabled\n");
    expect({unregisterLoginItem}, "unregistered\n");
    expect({loginStatus}, "disabled\n");
    expect({unregisterLoginItem}, "unregistered\n");
}

TEST_F(CommandLineTest, unregistering_that_fails_prints_why_and_exits_0) {
    const QString entry = program.path(QStringLiteral("config/autostart/org.pavonel.Pavonel.desktop"));
    ASSERT_TRUE(QDir().mkpath(entry)); // a folder cannot be removed as a file
    const auto result = program.run({unregisterLoginItem});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.count('\n'), 1);
    EXPECT_NE(result.output, "unregistered\n");
    EXPECT_TRUE(QFile::exists(entry));
}

TEST_F(CommandLineTest, of_several_switches_the_first_of_the_fixed_order_wins) {
    startOnceSoThatItRegisters();
    expect({version, help, unregisterLoginItem, loginStatus}, "enabled\n");
    expect({QStringLiteral("--nonsense"), loginStatus}, "enabled\n");
    expect({updateNow, loginStatus}, "enabled\n");
    expect({version, unregisterLoginItem}, "unregistered\n");
    EXPECT_TRUE(program.run({version, help}).output.startsWith("Usage: pavonel"));
}

TEST_F(CommandLineTest, help_names_every_switch) {
    const auto result = program.run({help});
    EXPECT_EQ(result.status, 0);
    for (const QString &name : {loginStatus, unregisterLoginItem, updateNow, help, version})
        EXPECT_TRUE(result.output.contains(name.toUtf8())) << name.toStdString();
}

TEST_F(CommandLineTest, the_version_is_told) {
    expect({version}, "pavonel " PAVONEL_VERSION "\n");
}

TEST_F(CommandLineTest, an_argument_that_is_no_switch_starts_the_application) {
    program.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (const char *argument : {"--nonsense", "--help=me", "-version", "nonsense", "", "--", "-session"}) {
        program.startWith({QString::fromUtf8(argument)});
        EXPECT_EQ(program.end(SIGTERM), 0) << argument;
    }
}

TEST_F(CommandLineTest, the_arguments_of_qt_are_left_to_qt) {
    program.startWith({QStringLiteral("-platform"), QStringLiteral("offscreen"), QStringLiteral("-session"),
                       QStringLiteral("restored")});
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(CommandLineTest, switches_leave_the_store_alone) {
    for (const QString &name : {loginStatus, unregisterLoginItem, help, version})
        program.run({name});
    EXPECT_EQ(QDir(program.storeFolder()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(CommandLineTest, a_start_without_a_display_says_so) {
    expectNoStart(noDisplay);
}

TEST_F(CommandLineTest, a_start_on_a_display_that_does_not_answer_says_so) {
    program.environment().insert(QStringLiteral("DISPLAY"), QStringLiteral(":60123"));
    expectNoStart(noDisplay);
    program.environment().insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("nowhere"));
    expectNoStart(noDisplay);
    choosePlatform("nonsense;xcb");
    expectNoStart(noDisplay);
}

TEST_F(CommandLineTest, a_start_on_a_platform_that_qt_does_not_have_names_it) {
    const QByteArray complaint = "pavonel: Qt has no platform plugin \"nonsense\" here; QT_QPA_PLATFORM or "
                                 "-platform chooses one\n";
    expectNoStart(complaint, {QStringLiteral("-platform"), QStringLiteral("nonsense")});
    choosePlatform("nonsense");
    expectNoStart(complaint);
    choosePlatform("nonsense:option=1;mist");
    expectNoStart(complaint);
}

TEST_F(CommandLineTest, a_platform_plugin_that_cannot_be_loaded_is_told_with_the_reason) {
    writeFile(program.path(QStringLiteral("libraries/libQt6XcbQpa.so.6")), "no library");
    program.environment().insert(QStringLiteral("LD_LIBRARY_PATH"),
                                 program.path(QStringLiteral("libraries")));
    const QByteArray complaint = refusal({});
    EXPECT_TRUE(complaint.contains("libqxcb.so")) << complaint.constData();
    EXPECT_TRUE(complaint.contains("libQt6XcbQpa.so.6")) << complaint.constData();
}

TEST_F(CommandLineTest, what_a_platform_plugin_complains_of_itself_is_told) {
    choosePlatform("eglfs"); // for a screen without a window system
    program.environment().insert(QStringLiteral("QT_QPA_EGLFS_INTEGRATION"), QStringLiteral("none"));
    program.environment().insert(QStringLiteral("__EGL_VENDOR_LIBRARY_DIRS"), QStringLiteral("/nonexistent"));
    EXPECT_TRUE(refusal({}).contains("EGLFS"));
}

} // namespace pavonel::test
