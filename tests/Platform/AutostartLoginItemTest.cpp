#include "Platform/Linux/AutostartLoginItem.h"

#include "Platform/Linux/DesktopEntry.h"
#include "support/ChildProcess.h"
#include "support/ToolFixture.h"

#include <QStandardPaths>

#include <sys/stat.h>

namespace pavonel::test {

namespace {

const auto entryName = QStringLiteral("config/autostart/org.pavonel.Pavonel.desktop");

/// It is no program for users, and each distribution has another folder for those.
QString starter() {
    return QStandardPaths::findExecutable(QStringLiteral("openbox-xdg-autostart"),
                                          {QStringLiteral("/usr/lib/x86_64-linux-gnu"),
                                           QStringLiteral("/usr/lib/aarch64-linux-gnu"),
                                           QStringLiteral("/usr/libexec"), QStringLiteral("/usr/lib")});
}

class LoginItemTest : public ToolFixture {
protected:
    LoginItemTest() { qunsetenv("XDG_CURRENT_DESKTOP"); }

    /// The login item of a program at this place, which does nothing but note that it ran.
    AutostartLoginItem itemOf(const QString &program) {
        program_ = addScript(program, "touch ran");
        return AutostartLoginItem(program_, path(QStringLiteral("config")));
    }
    QByteArray program() const { return QFile::encodeName(program_); }
    QByteArray entry() const { return read(entryName); }
    void writeEntry(const QByteArray &keys) const { write(entryName, "[Desktop Entry]\n" + keys + '\n'); }

    /// What a desktop's own starter of autostart entries makes of ours.
    QByteArray desktop(const QStringList &arguments) {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_CONFIG_DIRS"), path(QStringLiteral("none")));
        const auto result = ChildProcess::run(starter(), arguments, environment);
        EXPECT_EQ(result.status, 0) << result.errors.constData();
        return result.output;
    }
    QByteArray desktopsPlan() { return desktop({QStringLiteral("--list")}); }

private:
    QString program_;
};

/// An entry as a user or a desktop's settings left it, and whether it starts us.
struct EntryCase {
    const char *name;
    const char *keys; ///< "PROGRAM" stands for our path, "OTHER" for another program's.
    bool enabled;
};

class Entry : public LoginItemTest, public testing::WithParamInterface<EntryCase> {};

const EntryCase entryCases[] = {
    {"plain", "Type=Application\nExec=PROGRAM", true},
    {"of_no_type", "Exec=PROGRAM", false},
    {"of_another_type", "Type=Link\nExec=PROGRAM", false},
    {"without_a_command", "Type=Application", false},
    {"quoted", "Type=Application\nExec=\"PROGRAM\"", true},
    {"with_blanks_around_the_sign", "Type = Application\nExec =  PROGRAM ", true},
    {"with_arguments_and_field_codes", "Type=Application\nExec=PROGRAM --quiet %U", true},
    {"with_an_open_quote", "Type=Application\nExec=\"PROGRAM", false},
    {"hidden", "Type=Application\nExec=PROGRAM\nHidden=true", false},
    {"not_hidden", "Type=Application\nExec=PROGRAM\nHidden=false", true},
    {"disabled_in_gnome", "Type=Application\nExec=PROGRAM\nX-GNOME-Autostart-enabled=false", false},
    {"enabled_in_gnome", "Type=Application\nExec=PROGRAM\nX-GNOME-Autostart-enabled=true", true},
    {"hidden_in_another_group", "Type=Application\nExec=PROGRAM\n\n[Other]\nHidden=true", true},
    {"commented_out", "Type=Application\n#Exec=PROGRAM", false},
    {"of_another_program", "Type=Application\nExec=OTHER", false},
    {"of_another_program_named_like_ours", "Type=Application\nExec=OTHER PROGRAMS", false},
    {"of_a_program_that_is_gone", "Type=Application\nExec=/nowhere/pavonel", false},
    {"behind_a_wrapper", "Type=Application\nExec=env A=1 PROGRAM", true},
    {"behind_a_wrapper_that_is_gone", "Type=Application\nExec=/nowhere/env PROGRAM", false},
    {"when_a_program_is_there", "Type=Application\nExec=PROGRAM\nTryExec=PROGRAM", true},
    {"when_a_program_of_the_search_path_is_there", "Type=Application\nExec=PROGRAM\nTryExec=sh", true},
    {"when_a_program_is_there_that_is_not", "Type=Application\nExec=PROGRAM\nTryExec=/nowhere/x", false},
    {"only_elsewhere", "Type=Application\nExec=PROGRAM\nOnlyShowIn=GNOME;MATE;", false},
    {"only_here", "Type=Application\nExec=PROGRAM\nOnlyShowIn=GNOME;XFCE;", true},
    {"not_here", "Type=Application\nExec=PROGRAM\nNotShowIn=XFCE", false},
    {"not_elsewhere", "Type=Application\nExec=PROGRAM\nNotShowIn=GNOME;", true},
};

} // namespace

TEST_P(Entry, counts_as_the_desktop_would_take_it) {
    auto item = itemOf(QStringLiteral("pavonel"));
    qputenv("XDG_CURRENT_DESKTOP", "X-Own:XFCE");
    writeEntry(QByteArray(GetParam().keys).replace("OTHER", "/bin/true").replace("PROGRAM", program()));
    EXPECT_EQ(item.isEnabled(), GetParam().enabled) << entry().constData();
}

TEST_P(Entry, is_enabled_once_it_is_switched_on_whatever_it_was) {
    auto item = itemOf(QStringLiteral("pavonel"));
    qputenv("XDG_CURRENT_DESKTOP", "X-Own:XFCE");
    writeEntry(QByteArray(GetParam().keys).replace("OTHER", "/bin/true").replace("PROGRAM", program()));
    EXPECT_EQ(item.setEnabled(true), std::nullopt);
    EXPECT_TRUE(item.isEnabled()) << entry().constData();
}

INSTANTIATE_TEST_SUITE_P(LoginItem, Entry, testing::ValuesIn(entryCases),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_F(LoginItemTest, without_an_entry_it_is_not_enabled) {
    EXPECT_FALSE(itemOf(QStringLiteral("pavonel")).isEnabled());
}

TEST_F(LoginItemTest, switched_on_and_off_it_leaves_nothing_behind) {
    auto item = itemOf(QStringLiteral("pavonel"));
    EXPECT_EQ(item.setEnabled(true), std::nullopt);
    EXPECT_TRUE(item.isEnabled());
    EXPECT_EQ(item.setEnabled(true), std::nullopt);
    EXPECT_EQ(item.setEnabled(false), std::nullopt);
    EXPECT_FALSE(item.isEnabled());
    EXPECT_EQ(item.setEnabled(false), std::nullopt);
    EXPECT_TRUE(QDir(path(QStringLiteral("config/autostart"))).isEmpty());
}

TEST_F(LoginItemTest, a_new_entry_says_what_it_is) {
    auto item = itemOf(QStringLiteral("pavonel"));
    item.setEnabled(true);
    EXPECT_EQ(entry(), "[Desktop Entry]\nType=Application\nName=Pavonel\nComment=Reminds you to take breaks\n"
                       "Icon=org.pavonel.Pavonel\nTerminal=false\nExec=" +
                           program() + "\nTryExec=" + program() + '\n');
}

TEST_F(LoginItemTest, the_entry_of_an_earlier_version_is_taken_over_as_it_is) {
    const auto earlierName = QStringLiteral("config/autostart/pavonel.desktop");
    const auto item = itemOf(QStringLiteral("pavonel"));
    const QByteArray own = "[Desktop Entry]\nType=Application\nName=Breaks\nExec=true\nHidden=true\n";
    write(earlierName, own);
    item.takeOverEarlierEntry();
    EXPECT_EQ(entry(), own);
    EXPECT_FALSE(QFile::exists(path(earlierName)));
}

TEST_F(LoginItemTest, an_entry_of_today_counts_and_not_the_earlier_one) {
    const auto earlierName = QStringLiteral("config/autostart/pavonel.desktop");
    auto item = itemOf(QStringLiteral("pavonel"));
    item.setEnabled(true);
    write(earlierName, "[Desktop Entry]\nType=Application\nExec=true\n");
    item.takeOverEarlierEntry();
    EXPECT_TRUE(item.isEnabled());
    EXPECT_FALSE(QFile::exists(path(earlierName)));
}

TEST_F(LoginItemTest, without_an_earlier_entry_nothing_is_taken_over) {
    itemOf(QStringLiteral("pavonel")).takeOverEarlierEntry();
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("config/autostart"))));
}

TEST_F(LoginItemTest, an_entry_can_be_read_by_all_and_written_by_its_owner_under_any_umask) {
    for (const mode_t mask : {0000, 0022, 0077, 0777}) {
        AutostartLoginItem item = itemOf(QStringLiteral("pavonel"));
        QFile::remove(path(entryName));
        QDir().mkpath(path(QStringLiteral("config/autostart")));
        const mode_t before = ::umask(mask);
        EXPECT_FALSE(item.setEnabled(true));
        ::umask(before);
        struct stat status {};
        ASSERT_EQ(::stat(QFile::encodeName(path(entryName)).data(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0644U) << std::oct << mask;
    }
}

TEST_F(LoginItemTest, what_the_user_wrote_into_the_entry_stays) {
    auto item = itemOf(QStringLiteral("pavonel"));
    const QByteArray own = "# mine\n[Desktop Entry]\nType=Application\nName=Breaks\nExec=nice " + program() +
                           " --x\nX-GNOME-Autostart-Delay=10\n";
    write(entryName, own + "Hidden=true\n\n[X-Other]\nKey=Value\n");
    EXPECT_EQ(item.setEnabled(true), std::nullopt);
    EXPECT_EQ(entry(), own + "\n[X-Other]\nKey=Value\n");
}

TEST_F(LoginItemTest, an_entry_of_a_copy_that_moved_is_repaired) {
    auto item = itemOf(QStringLiteral("new place/pavonel"));
    writeEntry("Type=Application\nName=Pavonel\nExec=/old/pavonel\nTryExec=/old/pavonel");
    EXPECT_FALSE(item.isEnabled());
    EXPECT_EQ(item.setEnabled(true), std::nullopt);
    EXPECT_EQ(entry(), "[Desktop Entry]\nType=Application\nName=Pavonel\nExec=\"" + program() +
                           "\"\nTryExec=" + program() + '\n');
}

TEST_F(LoginItemTest, an_entry_that_is_no_entry_is_replaced) {
    auto item = itemOf(QStringLiteral("pavonel"));
    write(entryName, "nonsense\n\xff\xfe");
    EXPECT_FALSE(item.isEnabled());
    EXPECT_EQ(item.setEnabled(true), std::nullopt);
    EXPECT_TRUE(item.isEnabled());
    EXPECT_FALSE(entry().contains("nonsense"));
}

TEST_F(LoginItemTest, a_link_to_the_program_is_the_program) {
    auto item = itemOf(QStringLiteral("pavonel"));
    QFile::link(path(QStringLiteral("pavonel")), path(QStringLiteral("link")));
    writeEntry("Type=Application\nExec=" + QFile::encodeName(path(QStringLiteral("link"))));
    EXPECT_TRUE(item.isEnabled());
}

TEST_F(LoginItemTest, an_entry_that_cannot_be_written_is_told_in_one_sentence) {
    auto item = itemOf(QStringLiteral("pavonel"));
    write(QStringLiteral("config"), "a file where the folder should be");
    EXPECT_EQ(item.setEnabled(true),
              QStringLiteral("Pavonel cannot start at login, because the folder %1 cannot be made.")
                  .arg(path(QStringLiteral("config/autostart"))));
    QFile::remove(path(QStringLiteral("config")));
    QDir(folder()).mkpath(entryName); // a folder where the file should be
    const auto error = item.setEnabled(true);
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->startsWith(u"Pavonel cannot start at login, because the file "))
        << error->toStdString();
    EXPECT_TRUE(error->endsWith(u").")) << error->toStdString();
}

TEST_F(LoginItemTest, an_entry_that_cannot_be_removed_is_told_in_one_sentence) {
    auto item = itemOf(QStringLiteral("pavonel"));
    QDir(folder()).mkpath(entryName);
    const auto error = item.setEnabled(false);
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->startsWith(u"Pavonel still starts at login, because the file "))
        << error->toStdString();
}

TEST_F(LoginItemTest, a_desktops_own_starter_launches_the_program) {
    auto item = itemOf(QStringLiteral("a folder (new)/pavonel"));
    item.setEnabled(true);
    EXPECT_TRUE(desktopsPlan().startsWith("[*] Pavonel\n")) << desktopsPlan().constData();
    desktop({QStringLiteral("GNOME")});
    EXPECT_TRUE(appears(QStringLiteral("ran")));
}

TEST_F(LoginItemTest, a_desktops_own_starter_honours_it_when_disabled) {
    auto item = itemOf(QStringLiteral("pavonel"));
    item.setEnabled(true);
    write(entryName, entry() + "Hidden=true\n"); // as desktops' settings do
    EXPECT_FALSE(item.isEnabled());
    EXPECT_TRUE(desktopsPlan().startsWith("[ ] Pavonel\n")) << desktopsPlan().constData();
    item.setEnabled(true);
    EXPECT_TRUE(desktopsPlan().startsWith("[*] Pavonel\n")) << desktopsPlan().constData();
    item.setEnabled(false);
    EXPECT_EQ(desktopsPlan(), "");
}

TEST_F(LoginItemTest, another_reader_of_entries_starts_the_program_from_the_oddest_folder) {
    auto item = itemOf(QString::fromUtf8(" 100% \"o'd\\d\" $HOME `x` ~*?#&;<>|()\tö a=b %f/pavonel"));
    EXPECT_EQ(item.setEnabled(true), std::nullopt);
    EXPECT_TRUE(item.isEnabled()) << entry().constData();
    const auto result = ChildProcess::run(QStringLiteral("gio"), {QStringLiteral("launch"), path(entryName)});
    EXPECT_EQ(result.status, 0) << result.errors.constData();
    EXPECT_TRUE(appears(QStringLiteral("ran"))) << entry().constData();
}

TEST(DesktopEntry, a_command_line_is_split_as_its_standard_says) {
    const auto command = [](const QByteArray &exec) {
        return DesktopEntry::parse("[Desktop Entry]\nExec=" + exec)->command();
    };
    const auto list = [](std::initializer_list<const char *> parts) {
        QStringList strings;
        for (const char *part : parts)
            strings.append(QString::fromUtf8(part));
        return strings;
    };
    EXPECT_EQ(command("a  b c"), list({"a", "b", "c"}));
    EXPECT_EQ(command("\"a b\" \"\" c"), list({"a b", "", "c"}));
    EXPECT_EQ(command(R"("\\$a \\"b\\" \\\\c \\`d")"), list({R"($a "b" \c `d)"}));
    EXPECT_EQ(command("a %f 100%% --x=%u %"), list({"a", "100%", "--x="}));
    EXPECT_EQ(command("\"a"), QStringList());
    EXPECT_EQ(command(""), QStringList());
}

} // namespace pavonel::test
