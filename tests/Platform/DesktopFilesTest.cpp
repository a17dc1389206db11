#include "Platform/Linux/Applications/DesktopFiles.h"

#include "Platform/Linux/Applications/DesktopFileCatalogue.h"
#include "Platform/Linux/Applications/DesktopFileListing.h"
#include "Platform/Linux/Applications/ProcessFolder.h"
#include "Platform/Linux/Applications/ProgramName.h"
#include "Platform/Linux/Applications/Recorders.h"
#include "support/VirtualMainLoop.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QTemporaryDir>

#include <random>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr std::chrono::seconds slow{60}; // as a disk on a busy machine

std::optional<DesktopFile> entry(const QByteArray &lines) {
    return parseDesktopFile("[Desktop Entry]\nType=Application\n" + lines);
}

QByteArray programOf(const QByteArray &exec) {
    const auto file = entry("Exec=" + exec + '\n');
    return file ? file->program : "none";
}

QByteArray application(const QByteArray &program) {
    return "[Desktop Entry]\nType=Application\nName=x\nExec=" + program + " %U\n";
}

} // namespace

TEST(ProgramName, is_that_of_the_script_or_of_the_command_behind_env) {
    EXPECT_EQ(programName({"/usr/bin/gedit", "--new"}), "gedit");
    EXPECT_EQ(programName({"/usr/bin/python3.11", "-u", "/usr/bin/kazam", "x"}), "kazam");
    EXPECT_EQ(programName({"env", "A=b", "-u", "/opt/x/run"}), "run");
    EXPECT_EQ(programName({"bash", "-c", "sleep 5"}), "bash");
    EXPECT_EQ(programName({"python3"}), "python3");
    EXPECT_EQ(programName({"env"}), "");
    EXPECT_EQ(programName({}), "");
    EXPECT_EQ(programName({""}), "");
}

TEST(DesktopFiles, the_program_is_read_from_the_command) {
    EXPECT_EQ(programOf("firefox-esr %u"), "firefox-esr");
    EXPECT_EQ(programOf("\"/opt/My Tool/tool\" --flag"), "tool");
    EXPECT_EQ(programOf("env LANG=C /usr/bin/gimp-2.10 %U"), "gimp-2.10");
    EXPECT_EQ(programOf("python3 /usr/share/thing/thing.py"), "thing.py");
    EXPECT_EQ(programOf("/usr/bin/flatpak run org.x.Y"), "") << "hands over to another program";
}

TEST(DesktopFiles, hidden_ones_and_those_that_are_no_application_do_not_count) {
    EXPECT_FALSE(entry("Exec=a\nHidden=true\n"));
    EXPECT_FALSE(entry("Exec=a\nTerminal=true\n"));
    EXPECT_FALSE(parseDesktopFile("[Desktop Entry]\nType=Link\nExec=a\n"));
    EXPECT_FALSE(parseDesktopFile("Type=Application\nExec=a\n")) << "outside of the group";
    const auto withAction = entry("Exec=a\n[Desktop Action new]\nExec=b\nHidden=true\n");
    ASSERT_TRUE(withAction);
    EXPECT_EQ(withAction->program, "a");
}

TEST(DesktopFiles, nonsense_is_no_application) {
    EXPECT_FALSE(parseDesktopFile({}));
    EXPECT_FALSE(parseDesktopFile("[Desktop Entry"));
    EXPECT_FALSE(parseDesktopFile(QByteArray(1 << 16, '\n')));
    EXPECT_FALSE(parseDesktopFile(QByteArray(1 << 16, '=')));
    EXPECT_EQ(programOf("\"never closed"), "");
    EXPECT_EQ(programOf("back\\"), "back\\");
    EXPECT_EQ(programOf(""), "");
    EXPECT_EQ(programOf("%U"), "");
    std::mt19937 random(1); // NOLINT: the same noise every time
    for (int round = 0; round < 2000; ++round) {
        QByteArray noise = "[Desktop Entry]\nType=Application\nExec=";
        for (int index = 0; index < 60; ++index)
            noise += "\"\\ \n=[]%aE\0\xff/"[random() % 13];
        parseDesktopFile(noise);
    }
}

TEST(DesktopFiles, a_program_belongs_to_the_application_that_is_called_like_it) {
    DesktopFileIndex index;
    index.add(QStringLiteral("browser-private"), DesktopFile{"browser", true, {}});
    index.add(QStringLiteral("org.example.Browser"), DesktopFile{"browser", false, {}});
    EXPECT_EQ(index.forProgram("browser"), QStringLiteral("org.example.Browser"));
    index.add(QStringLiteral("browser"), DesktopFile{"browser", false, {}});
    EXPECT_EQ(index.forProgram("browser"), QStringLiteral("browser"));
    EXPECT_EQ(index.forProgram("other"), QString());
}

TEST(DesktopFiles, a_window_class_belongs_to_the_application_that_declares_it_or_is_called_like_it) {
    DesktopFileIndex index;
    index.add(QStringLiteral("writer"), DesktopFile{"office", true, QStringLiteral("Office-Writer")});
    index.add(QStringLiteral("gedit"), DesktopFile{"gedit", false, {}});
    EXPECT_EQ(index.forWindow(QStringLiteral("office-writer"), {}, {}), QStringLiteral("writer"));
    EXPECT_EQ(index.forWindow(QStringLiteral("Gedit"), {}, {}), QStringLiteral("gedit"));
    EXPECT_EQ(index.forWindow(QStringLiteral("nobody"), {}, {}), QString());
    EXPECT_EQ(index.forWindow({}, {}, {}), QString());
}

TEST(DesktopFiles, of_two_that_declare_a_window_class_the_one_of_the_process_holds_else_the_first_by_name) {
    DesktopFileIndex index;
    const QString emacs = QStringLiteral("Emacs");
    for (const char *identifier : {"emacsclient", "emacs", "emacs-term"})
        index.add(QString::fromLatin1(identifier), DesktopFile{identifier, false, emacs});
    EXPECT_EQ(index.forWindow(emacs, {}, QStringLiteral("emacsclient")), QStringLiteral("emacsclient"));
    EXPECT_EQ(index.forWindow(emacs, {}, QStringLiteral("emacs")), QStringLiteral("emacs"));
    EXPECT_EQ(index.forWindow(emacs, {}, QStringLiteral("gedit")), QStringLiteral("emacs"));
    EXPECT_EQ(index.forWindow(emacs, {}, {}), QStringLiteral("emacs"));
}

TEST(DesktopFiles, of_two_that_start_a_program_alike_the_first_by_name_holds) {
    for (const auto &[first, second] : {std::pair("b", "a"), std::pair("a", "b")}) {
        DesktopFileIndex index;
        index.add(QString::fromLatin1(first), DesktopFile{"program", false, {}});
        index.add(QString::fromLatin1(second), DesktopFile{"program", false, {}});
        EXPECT_EQ(index.forProgram("program"), QStringLiteral("a"));
    }
}

TEST(DesktopFiles, the_instance_of_a_window_tells_a_web_application_from_its_browser) {
    DesktopFileIndex index;
    const QString browser = QStringLiteral("Chromium");
    index.add(QStringLiteral("chromium"), DesktopFile{"chromium", false, browser});
    index.add(QStringLiteral("chrome-mail-Default"),
              DesktopFile{"chromium", true, QStringLiteral("crx_mail")});
    index.add(QStringLiteral("writer"), DesktopFile{"office", true, {}});
    const auto found = [&index](const char *instance, const QString &windowClass) {
        return index.forWindow(windowClass, QString::fromLatin1(instance), QStringLiteral("chromium"));
    };
    EXPECT_EQ(found("crx_mail", browser), QStringLiteral("chrome-mail-Default"));
    EXPECT_EQ(found("chromium", browser), QStringLiteral("chromium"));
    EXPECT_EQ(found("writer", browser), QStringLiteral("chromium")) << "what is declared comes first";
    EXPECT_EQ(found("writer", QStringLiteral("unknown")), QStringLiteral("writer"));
}

TEST(DesktopFiles, are_listed_in_the_order_of_their_names_folder_by_folder) {
    const QTemporaryDir user;
    const QTemporaryDir system;
    QStringList expected;
    for (const QTemporaryDir *folder : {&user, &system}) {
        for (const char *name : {"m", "c", "z", "a", "k"})
            writeFile(folder->filePath(QString::fromLatin1(name) + QStringLiteral(".desktop")), "");
        for (const char *name : {"a", "c", "k", "m", "z"})
            expected.append(folder->filePath(QString::fromLatin1(name) + QStringLiteral(".desktop")));
    }
    QStringList listed;
    for (const ListedDesktopFile &file : listDesktopFiles({user.path(), system.path()}, [](auto &) {}))
        listed.append(file.path);
    EXPECT_EQ(listed, expected);
}

TEST(DesktopFiles, the_folder_of_the_user_outranks_those_of_the_system) {
    const QTemporaryDir user;
    const QTemporaryDir system;
    writeFile(system.filePath(QStringLiteral("a.desktop")), application("old"));
    writeFile(system.filePath(QStringLiteral("b.desktop")), application("hidden"));
    writeFile(system.filePath(QStringLiteral("sub/c.desktop")), application("nested"));
    writeFile(system.filePath(QStringLiteral("broken.desktop")), QByteArrayLiteral("\0\xff\xfe[[[=\n\"\\"));
    writeFile(user.filePath(QStringLiteral("a.desktop")), application("new"));
    writeFile(user.filePath(QStringLiteral("b.desktop")), "[Desktop Entry]\nHidden=true\n");
    VirtualMainLoop loop;
    DesktopFileCatalogue catalogue({user.path(), system.path(), QStringLiteral("/nonexistent/applications")},
                                   loop);
    ASSERT_TRUE(catalogue.read(slow));
    EXPECT_EQ(catalogue.index().forProgram("new"), QStringLiteral("a"));
    EXPECT_EQ(catalogue.index().forProgram("old"), QString());
    EXPECT_EQ(catalogue.index().forProgram("hidden"), QString());
    EXPECT_EQ(catalogue.index().forProgram("nested"), QStringLiteral("sub-c"));
}

TEST(DesktopFiles, folders_are_read_again_only_when_they_change) {
    const QTemporaryDir folder;
    writeFile(folder.filePath(QStringLiteral("a.desktop")), application("a"));
    VirtualMainLoop loop;
    DesktopFileCatalogue catalogue({folder.path()}, loop);
    ASSERT_TRUE(catalogue.read(slow));
    EXPECT_FALSE(catalogue.read(slow));
    writeFile(folder.filePath(QStringLiteral("b.desktop")), application("b"));
    EXPECT_TRUE(waitUntil([&] { return catalogue.read(slow); }));
    EXPECT_EQ(catalogue.index().forProgram("b"), QStringLiteral("b"));
}

TEST(DesktopFiles, a_folder_that_comes_with_its_first_application_is_read) {
    const QTemporaryDir home;
    VirtualMainLoop loop;
    DesktopFileCatalogue catalogue({home.filePath(QStringLiteral("share/boxes/applications"))}, loop);
    ASSERT_TRUE(catalogue.read(slow));
    writeFile(home.filePath(QStringLiteral("notes")), "something else");
    EXPECT_FALSE(waitUntil([&] { return catalogue.read(slow); }, 300));
    QDir(home.path()).mkdir(QStringLiteral("share"));
    EXPECT_FALSE(waitUntil([&] { return catalogue.read(slow); }, 300));
    writeFile(home.filePath(QStringLiteral("share/boxes/applications/a.desktop")), application("a"));
    EXPECT_TRUE(waitUntil([&] {
        catalogue.read(slow);
        return catalogue.index().forProgram("a") == u"a";
    }));
}

TEST(DesktopFiles, who_cannot_wait_gets_the_index_later) {
    const QTemporaryDir folder;
    writeFile(folder.filePath(QStringLiteral("a.desktop")), application("a"));
    VirtualMainLoop loop;
    DesktopFileCatalogue catalogue({folder.path()}, loop);
    EXPECT_TRUE(waitUntil([&] {
        loop.advance(0);
        return catalogue.read(std::chrono::milliseconds::zero());
    }));
    EXPECT_EQ(catalogue.index().forProgram("a"), QStringLiteral("a"));
}

TEST(SystemdUnits, of_applications_name_the_desktop_file) {
    const auto identifier = [](const char *unit) { return identifierOfUnit(unit).toStdString(); };
    EXPECT_EQ(identifier("app-gnome-org.gnome.Evince-2234.scope"), "org.gnome.Evince");
    EXPECT_EQ(identifier("app-firefox-1234.scope"), "firefox");
    EXPECT_EQ(identifier("app-gnome-visual\\x2dstudio-99.scope"), "visual-studio");
    EXPECT_EQ(identifier("app-org.kde.dolphin@5f1c.service"), "org.kde.dolphin");
    EXPECT_EQ(identifier("app-org.kde.dolphin.service"), "org.kde.dolphin");
    EXPECT_EQ(identifier("dbus-:1.2-org.gnome.Nautilus@0.service"), "org.gnome.Nautilus");
    EXPECT_EQ(identifier("snap.firefox.firefox-7d3c1a2b-0000-4000-8000-1234567890ab.scope"),
              "firefox_firefox");
    EXPECT_EQ(identifier("session-2.scope"), "");
    EXPECT_EQ(identifier("pipewire.service"), "");
    EXPECT_EQ(identifier("app-.scope"), "");
    EXPECT_EQ(identifier("snap."), "");
    EXPECT_EQ(identifier("app-\\x2.service"), "\\x2");
    EXPECT_EQ(identifier(""), "");
}

TEST(Recorders, are_reported_under_the_identifiers_of_the_fixed_list) {
    const auto identifier = [](const char *program, const QByteArrayList &arguments = {}) {
        return recorders::identifierOf(program, arguments).toStdString();
    };
    EXPECT_EQ(identifier("obs"), "com.obsproject.obs-studio");
    EXPECT_EQ(identifier("x11vnc"), "com.apple.ScreenSharing");
    EXPECT_EQ(identifier("simplescreenrecorder"), "com.apple.screencaptureui");
    EXPECT_EQ(identifier("ffmpeg", {"ffmpeg", "-f", "x11grab", "-i", ":0"}), "com.apple.screencaptureui");
    EXPECT_EQ(identifier("ffmpeg", {"ffmpeg", "-i", "a.mp4", "b.webm"}), "");
    EXPECT_EQ(identifier("gedit"), "");
}

} // namespace pavonel::test
