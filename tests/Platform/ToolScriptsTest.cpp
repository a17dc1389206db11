#include "support/ChildProcess.h"
#include "support/ToolFixture.h"

namespace pavonel::test {

namespace {

/// Our own tools that stand in for the fixed tool paths, as processes.
class ToolScriptsTest : public ToolFixture {
protected:
    ToolScriptsTest() {
        environment.insert(QStringLiteral("HOME"), folder());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"), path(QStringLiteral("data")));
        environment.insert(QStringLiteral("XDG_DATA_DIRS"),
                           path(QStringLiteral("none")) + u':' + path(QStringLiteral("system data")));
    }

    int run(const char *tool, const QStringList &arguments) {
        const auto folder = QStringLiteral(PAVONEL_SOURCE_DIR "/libexec/");
        return ChildProcess::run(folder + QString::fromLatin1(tool), arguments, environment).status;
    }
    int osascript(const QStringList &arguments) { return run("osascript", arguments); }
    int shortcut(const QString &name) { return run("shortcuts", {QStringLiteral("run"), name}); }

    QString addShortcut(const QString &name) {
        return addScript(QStringLiteral("config/pavonel/shortcuts/") + name, recordArguments);
    }
    void addEntry(const QString &id, const QByteArray &exec, const QString &data = QStringLiteral("data")) {
        write(data + QStringLiteral("/applications/") + id + QStringLiteral(".desktop"),
              "[Desktop Entry]\nType=Application\nName=Tool\nExec=" + exec +
                  "\nActions=other;\n\n[Desktop Action other]\nName=Other\nExec=false\n");
    }
    /// A search path with the commands that a shell script needs and no desktop's own starter.
    void hideDesktopTools() {
        for (const char *name : {"sed", "head", "mv"}) {
            const auto link = QStringLiteral("bin/") + QString::fromLatin1(name);
            QDir(folder()).mkpath(QStringLiteral("bin"));
            QFile::link(QStringLiteral("/bin/") + QString::fromLatin1(name), path(link));
        }
        environment.insert(QStringLiteral("PATH"), path(QStringLiteral("bin")));
    }

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

} // namespace

TEST_F(ToolScriptsTest, inline_text_is_shell_commands) {
    EXPECT_EQ(
        osascript({QStringLiteral("-e"),
                   QStringLiteral("cd \"$HOME\"; for n in 1 2; do\n echo \"no $n\" >>out\ndone; exit 3")}),
        3);
    EXPECT_EQ(read(QStringLiteral("out")), "no 1\nno 2\n");
}

TEST_F(ToolScriptsTest, inline_text_that_looks_like_an_option_is_none) {
    EXPECT_EQ(osascript({QStringLiteral("-e"), QStringLiteral("-x")}), 127) << "no such command";
}

TEST_F(ToolScriptsTest, an_executable_file_runs_by_itself) {
    const QString file = addScript(QStringLiteral("a b.scpt"), "touch done; exit 4");
    EXPECT_EQ(osascript({file}), 4);
    EXPECT_TRUE(exists(QStringLiteral("done")));
}

TEST_F(ToolScriptsTest, a_file_that_is_not_executable_runs_as_shell_commands) {
    write(QStringLiteral("break.scpt"), "exit 5\n");
    EXPECT_EQ(osascript({path(QStringLiteral("break.scpt"))}), 5);
}

TEST_F(ToolScriptsTest, a_tilde_in_front_of_a_file_is_the_home_folder) {
    write(QStringLiteral("my break.scpt"), "exit 6\n");
    EXPECT_EQ(osascript({QStringLiteral("~/my break.scpt")}), 6);
}

TEST_F(ToolScriptsTest, a_file_that_does_not_exist_and_wrong_arguments_only_fail) {
    EXPECT_NE(osascript({path(QStringLiteral("nothing.scpt"))}), 0);
    EXPECT_EQ(osascript({}), 64);
    EXPECT_EQ(osascript({QStringLiteral("-e"), QStringLiteral("true"), QStringLiteral("true")}), 64);
    EXPECT_EQ(run("shortcuts", {QStringLiteral("list")}), 64);
    EXPECT_EQ(run("shortcuts", {QStringLiteral("list"), QStringLiteral("x")}), 64);
}

TEST_F(ToolScriptsTest, a_shortcut_is_an_executable_in_the_users_folder) {
    addShortcut(QStringLiteral(" Dim & play"));
    EXPECT_EQ(shortcut(QStringLiteral(" Dim & play")), 0);
    EXPECT_TRUE(exists(QStringLiteral("arguments")));
}

TEST_F(ToolScriptsTest, without_a_configuration_folder_named_it_is_the_usual_one) {
    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    addScript(QStringLiteral(".config/pavonel/shortcuts/lamp"), "exit 7");
    EXPECT_EQ(shortcut(QStringLiteral("lamp")), 7);
}

TEST_F(ToolScriptsTest, a_file_that_is_not_executable_is_no_shortcut) {
    QFile::setPermissions(addShortcut(QStringLiteral("lamp")), QFile::ReadOwner);
    EXPECT_EQ(shortcut(QStringLiteral("lamp")), 1);
}

TEST_F(ToolScriptsTest, a_name_that_leads_out_of_the_folder_is_refused) {
    addShortcut(QStringLiteral("lamp"));
    addScript(QStringLiteral("config/pavonel/outside"), recordArguments);
    for (const char *name : {"", ".", "..", "../outside", "./lamp", "/bin/true"})
        EXPECT_EQ(shortcut(QString::fromLatin1(name)), 64) << name;
    EXPECT_FALSE(exists(QStringLiteral("arguments")));
}

TEST_F(ToolScriptsTest, a_shortcut_is_a_desktop_entry_too) {
    addEntry(QStringLiteral("org.example.Lamp"),
             '"' + QFile::encodeName(addScript(QStringLiteral("a lamp"), recordArguments)) + "\" --on %U");
    EXPECT_EQ(shortcut(QStringLiteral("org.example.Lamp")), 0);
    EXPECT_EQ(recordedArguments(), QByteArrayList{"--on"});
}

TEST_F(ToolScriptsTest, a_desktop_entry_starts_without_the_desktops_help) {
    hideDesktopTools();
    const QByteArray program = QFile::encodeName(addScript(QStringLiteral("100% a $lamp"), recordArguments));
    const QByteArray quoted = QByteArray(program).replace('%', "%%").replace("$", "\\\\$");
    addEntry(QStringLiteral("lamp"), '"' + quoted + "\" %f --at 50%% \"two words\"",
             QStringLiteral("system data"));
    EXPECT_EQ(shortcut(QStringLiteral("lamp")), 0);
    EXPECT_EQ(recordedArguments(), (QByteArrayList{"--at", "50%", "two words"}));
}

TEST_F(ToolScriptsTest, a_desktop_entry_starts_whatever_the_search_path) {
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/nonexistent"));
    const QString program = addScript(QStringLiteral("lamp"), "echo \"$PATH\" >path");
    addEntry(QStringLiteral("lamp"), QFile::encodeName(program));
    EXPECT_EQ(shortcut(QStringLiteral("lamp")), 0);
    EXPECT_EQ(read(QStringLiteral("path")), "/nonexistent\n") << "which the command itself has as it is";
}

TEST_F(ToolScriptsTest, the_users_own_shortcut_comes_before_a_desktop_entry) {
    addShortcut(QStringLiteral("lamp"));
    addEntry(QStringLiteral("lamp"), "false");
    EXPECT_EQ(shortcut(QStringLiteral("lamp")), 0);
    EXPECT_TRUE(exists(QStringLiteral("arguments")));
}

TEST_F(ToolScriptsTest, a_shortcut_that_is_nowhere_only_fails) {
    EXPECT_EQ(shortcut(QStringLiteral("lamp")), 1);
}

} // namespace pavonel::test
