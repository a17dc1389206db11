#include "Core/SystemBits.h"
#include "Platform/Linux/DetachedLauncher.h"
#include "support/ToolFixture.h"

#include <sys/wait.h>

namespace pavonel::test {

namespace {

/// Break scripts over the real launcher, with recording stand-ins for both tools.
class AutomationTest : public ToolFixture {
protected:
    AutomationTest() {
        for (const char *tool : {"osascript", "shortcuts"})
            addTool(QString::fromLatin1(tool), "set -- " + QByteArray(tool) + " \"$@\"\n" + recordArguments);
    }

    /// The tool that ran and its arguments.
    QByteArrayList run(const QString &script) {
        Automation::run(launcher, script);
        return recordedArguments();
    }

    DetachedLauncher launcher{files()};
};

} // namespace

TEST_F(AutomationTest, inline_source_with_spaces_around_it_runs_without_those_spaces) {
    EXPECT_EQ(run(QStringLiteral(" \n\tnotify-send \"a  break\"  \n")),
              (QByteArrayList{"osascript", "-e", "notify-send \"a  break\""}));
}

TEST_F(AutomationTest, a_script_file_runs_by_its_path) {
    EXPECT_EQ(run(QStringLiteral("  /home/a b/break.scpt ")),
              (QByteArrayList{"osascript", "/home/a b/break.scpt"}));
}

TEST_F(AutomationTest, a_longer_extension_is_a_script_file_too) {
    EXPECT_EQ(run(QStringLiteral("~/break.applescript")),
              (QByteArrayList{"osascript", "~/break.applescript"}));
}

TEST_F(AutomationTest, an_extension_in_capitals_is_inline_source) {
    EXPECT_EQ(run(QStringLiteral("/home/a/break.SCPT")),
              (QByteArrayList{"osascript", "-e", "/home/a/break.SCPT"}));
}

TEST_F(AutomationTest, a_shortcut_runs_by_its_name_with_a_blank_in_front_kept) {
    EXPECT_EQ(run(QStringLiteral(" shortcut: Dim the lights ")),
              (QByteArrayList{"shortcuts", "run", " Dim the lights"}));
}

TEST_F(AutomationTest, the_shortcut_prefix_in_capitals_is_inline_source) {
    EXPECT_EQ(run(QStringLiteral("Shortcut:Dim")), (QByteArrayList{"osascript", "-e", "Shortcut:Dim"}));
}

TEST_F(AutomationTest, a_script_of_only_spaces_and_newlines_starts_no_process) {
    Automation::run(launcher, QStringLiteral(" \n\t \r\n"));
    Automation::run(launcher, QString());
    EXPECT_EQ(::waitpid(-1, nullptr, 0), -1);
    EXPECT_EQ(run(QStringLiteral("last")), (QByteArrayList{"osascript", "-e", "last"}));
}

TEST_F(AutomationTest, without_any_tool_the_launch_fails_silently) {
    QDir(path(QStringLiteral("program"))).removeRecursively();
    Automation::run(launcher, QStringLiteral("touch started"));
    Automation::run(launcher, QStringLiteral("shortcut:started"));
    EXPECT_EQ(::waitpid(-1, nullptr, 0), -1) << "nothing was started";
}

} // namespace pavonel::test
