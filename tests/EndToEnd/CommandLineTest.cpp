#include "EndToEnd/HeadlessProgram.h"

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

/// As over a remote shell: no display, no message bus.
struct CommandLineTest : testing::Test {
    CommandLineTest() { program.environment().remove(QStringLiteral("QT_QPA_PLATFORM")); }

    void expect(const QStringList &arguments, const QByteArray &output) const {
        const auto result = program.run(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, output);
        EXPECT_EQ(result.errors, "");
    }

    void expectRefusal(const QStringList &arguments, int status) const {
        const auto result = program.run(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.toStdString();
        EXPECT_TRUE(result.errors.startsWith("pavonel: ")) << result.errors.toStdString();
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
    const QString entry = program.path(QStringLiteral("config/autostart/pavonel.desktop"));
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

TEST_F(CommandLineTest, an_unknown_option_gets_one_line_and_status_2) {
    expectRefusal({QStringLiteral("--nonsense")}, 2);
    expectRefusal({QStringLiteral("--help=me")}, 2);
    expectRefusal({QStringLiteral("nonsense")}, 2);
}

TEST_F(CommandLineTest, switches_leave_the_store_alone) {
    for (const QString &name :
         {loginStatus, unregisterLoginItem, help, version, QStringLiteral("--nonsense")})
        program.run({name});
    EXPECT_EQ(QDir(program.storeFolder()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(CommandLineTest, a_start_without_a_display_gets_one_line_and_status_1) {
    expectRefusal({}, 1);
}

TEST_F(CommandLineTest, a_start_on_a_display_that_does_not_answer_gets_one_line_and_status_1) {
    program.environment().insert(QStringLiteral("DISPLAY"), QStringLiteral(":60123"));
    expectRefusal({}, 1);
    program.environment().insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("nowhere"));
    expectRefusal({}, 1);
}

TEST_F(CommandLineTest, a_start_on_a_platform_that_qt_does_not_have_gets_one_line_and_status_1) {
    program.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nonsense"));
    expectRefusal({}, 1);
}

} // namespace pavonel::test
