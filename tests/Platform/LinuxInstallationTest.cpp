#include "Platform/Linux/LinuxInstallation.h"

#include "support/ChildProcess.h"
#include "support/InChild.h"
#include "support/ToolFixture.h"

#include <cstdio>
#include <ios>

#include <sys/stat.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

class LinuxInstallationTest : public ToolFixture {
protected:
    LinuxInstallationTest() {
        QDir(folder()).mkpath(QStringLiteral("Pavonel.app/libexec/pavonel"));
        write(QStringLiteral("Pavonel.app/pavonel"), "program");
        write(QStringLiteral("Pavonel.app/version"), "2.4.1\n");
    }

    LinuxInstallation installationOf(const QString &program) const {
        return LinuxInstallation(ProgramFiles(program), path(temporary),
                                 path(QStringLiteral("config/pavonel/signed")));
    }
    LinuxInstallation inBundle() const { return installationOf(path(QStringLiteral("Pavonel.app/pavonel"))); }

    unsigned modeOf(const QString &name) const {
        struct stat status {};
        return ::lstat(QFile::encodeName(path(name)).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    void setMode(const QString &name, unsigned mode) const {
        ASSERT_EQ(::chmod(QFile::encodeName(path(name)).constData(), mode), 0);
    }

    const QString temporary = QStringLiteral("cache/pavonel/tmp");
};

} // namespace

TEST_F(LinuxInstallationTest, a_bundle_is_the_folder_around_the_program) {
    EXPECT_EQ(inBundle().bundle(), QFileInfo(path(QStringLiteral("Pavonel.app"))).canonicalFilePath());
    EXPECT_EQ(inBundle().limitation(), QString());
}

TEST_F(LinuxInstallationTest, that_images_are_signed_is_known_to_every_process_from_then_on) {
    LinuxInstallation one = inBundle();
    const LinuxInstallation other = inBundle();
    EXPECT_FALSE(other.wereImagesSigned());
    one.keepThatImagesAreSigned();
    EXPECT_TRUE(other.wereImagesSigned());
    EXPECT_TRUE(inBundle().wereImagesSigned());
    one.keepThatImagesAreSigned();
    EXPECT_TRUE(one.wereImagesSigned());
}

TEST_F(LinuxInstallationTest, a_bundle_that_is_reached_through_a_link_is_itself) {
    QFile::link(path(QStringLiteral("Pavonel.app")), path(QStringLiteral("link")));
    EXPECT_EQ(installationOf(path(QStringLiteral("link/pavonel"))).bundle(), inBundle().bundle());
}

TEST_F(LinuxInstallationTest, a_bundle_tells_its_version) {
    EXPECT_EQ(inBundle().version(), QStringLiteral("2.4.1"));
    EXPECT_EQ(inBundle().versionOf(path(QStringLiteral("Pavonel.app"))), QStringLiteral("2.4.1"));
}

TEST_F(LinuxInstallationTest, the_running_version_stays_when_the_bundle_is_replaced) {
    const LinuxInstallation installation = inBundle();
    write(QStringLiteral("Pavonel.app/version"), "3.0\n");
    EXPECT_EQ(installation.version(), QStringLiteral("2.4.1"));
    EXPECT_EQ(installation.versionOf(path(QStringLiteral("Pavonel.app"))), QStringLiteral("3.0"));
}

TEST_F(LinuxInstallationTest, a_bundle_of_another_version_in_its_place_is_its_successor) {
    const LinuxInstallation installation = inBundle();
    EXPECT_EQ(installation.successor(), QString());
    write(QStringLiteral("Pavonel.app/version"), "");
    EXPECT_EQ(installation.successor(), QString()) << "it does not tell its version";
    write(QStringLiteral("Pavonel.app/version"), "3.0\n");
    EXPECT_EQ(installation.successor(), installation.bundle());
}

TEST_F(LinuxInstallationTest, a_program_that_a_package_manager_exchanged_is_its_own_successor) {
    const QString program = addScript(QStringLiteral("pavonel"), "old");
    LinuxInstallation installation = installationOf(program);
    bool told = false;
    installation.onSuccessor([&] { told = true; });
    EXPECT_EQ(installation.successor(), QString());

    const QString next = addScript(QStringLiteral("pavonel.next"), "new");
    ASSERT_EQ(std::rename(QFile::encodeName(next).constData(), QFile::encodeName(program).constData()), 0);
    EXPECT_EQ(installation.successor(), program);
    EXPECT_TRUE(waitUntil([&] { return told; }));
}

TEST_F(LinuxInstallationTest, a_program_that_was_removed_has_no_successor) {
    const QString program = addScript(QStringLiteral("pavonel"), "old");
    const LinuxInstallation installation = installationOf(program);
    QFile::remove(program);
    EXPECT_EQ(installation.successor(), QString());
}

TEST_F(LinuxInstallationTest, a_bundle_without_a_version_does_not_tell_one) {
    const QString bundle = path(QStringLiteral("Pavonel.app"));
    for (const char *content : {"", "\n", " \n"}) {
        write(QStringLiteral("Pavonel.app/version"), content);
        EXPECT_EQ(inBundle().versionOf(bundle), std::nullopt);
    }
    EXPECT_EQ(inBundle().versionOf(path(QStringLiteral("nowhere"))), std::nullopt);
}

TEST_F(LinuxInstallationTest,
       a_program_that_is_no_bundle_has_the_version_of_its_build_and_says_who_updates_it) {
    const LinuxInstallation installation = installationOf(path(QStringLiteral("program/pavonel")));
    EXPECT_EQ(installation.bundle(), QString());
    EXPECT_EQ(installation.version(), QStringLiteral(PAVONEL_VERSION));
    EXPECT_EQ(installation.limitation(),
              QStringLiteral("This copy of Pavonel was not installed from a disk image. "
                             "Whoever built or installed it updates it."));
}

TEST_F(LinuxInstallationTest, a_packaged_program_is_updated_by_the_package_manager) {
    const QString sentence =
        QStringLiteral("This copy of Pavonel was installed by the system's package manager, "
                       "which also updates it.");
    for (const char *program : {"/usr/bin/pavonel", "/usr/lib/Pavonel.app/pavonel", "/app/bin/pavonel",
                                "/snap/pavonel/1/bin/pavonel", "/nix/store/x-pavonel/bin/pavonel"})
        EXPECT_EQ(installationOf(QString::fromUtf8(program)).limitation(), sentence) << program;
    EXPECT_NE(installationOf(QStringLiteral("/usr/local/bin/pavonel")).limitation(), sentence);
}

TEST_F(LinuxInstallationTest, a_bundle_in_a_folder_that_cannot_be_written_says_so) {
    const QString where = QFileInfo(inBundle().bundle()).path();
    setMode(QString(), 0555);
    inChild([&] {
        becomeNobody();
        EXPECT_EQ(
            inBundle().limitation(),
            QStringLiteral("You may not change the folder %1. Whoever installed Pavonel there updates it.")
                .arg(where));
    });
    setMode(QString(), 0700);
}

TEST_F(LinuxInstallationTest, a_bundle_with_a_folder_that_cannot_be_emptied_says_so) {
    for (const char *name : {"", "Pavonel.app", "Pavonel.app/libexec", "Pavonel.app/libexec/pavonel"})
        giveToNobody(QFile::encodeName(path(QString::fromUtf8(name))).constData());
    const auto inner = QStringLiteral("Pavonel.app/libexec");
    const QString where = QFileInfo(path(inner)).canonicalFilePath();
    inChild([&] {
        becomeNobody();
        EXPECT_EQ(inBundle().limitation(), QString());
    });
    setMode(inner, 0555);
    inChild([&] {
        becomeNobody();
        EXPECT_EQ(
            inBundle().limitation(),
            QStringLiteral("You may not change the folder %1. Whoever installed Pavonel there updates it.")
                .arg(where));
    });
    setMode(inner, 0755);
}

TEST_F(LinuxInstallationTest, a_copy_that_lies_where_others_may_write_says_so) {
    const auto said = [](const QString &folder) {
        return QStringLiteral(
                   "Other users may change the folder %1, so Pavonel does not update itself there.")
            .arg(folder);
    };
    const QString parent = QFileInfo(inBundle().bundle()).path();
    for (const unsigned mode : {01777U, 0777U, 0770U, 0775U, 0757U, 02775U}) {
        setMode(QString(), mode);
        EXPECT_EQ(inBundle().limitation(), said(parent)) << std::oct << mode;
        setMode(QString(), 0700);
        setMode(QStringLiteral("Pavonel.app/libexec"), mode);
        EXPECT_EQ(inBundle().limitation(), said(inBundle().bundle() + QStringLiteral("/libexec")))
            << std::oct << mode;
        setMode(QStringLiteral("Pavonel.app/libexec"), 0755);
    }
    EXPECT_EQ(inBundle().limitation(), QString());
}

TEST_F(LinuxInstallationTest, a_copy_below_a_folder_where_others_may_write_says_so) {
    QDir(folder()).mkpath(QStringLiteral("shared/mine"));
    QDir().rename(path(QStringLiteral("Pavonel.app")), path(QStringLiteral("shared/mine/Pavonel.app")));
    const auto limitation = [this] {
        return installationOf(path(QStringLiteral("shared/mine/Pavonel.app/pavonel"))).limitation();
    };
    EXPECT_EQ(limitation(), QString());
    for (const unsigned mode : {0777U, 0775U}) {
        setMode(QStringLiteral("shared"), mode);
        EXPECT_TRUE(limitation().startsWith(QStringLiteral("Other users may change the folder ")))
            << std::oct << mode;
    }
    setMode(QStringLiteral("shared"), 01777);
    EXPECT_EQ(limitation(), QString()) << "as in /tmp, where nobody else can move the folder below";
}

TEST_F(LinuxInstallationTest, a_copy_in_a_folder_whose_name_is_no_text_says_so) {
    const QByteArray name = QFile::encodeName(folder()) + "/\xff";
    ASSERT_EQ(::mkdir(name.constData(), 0700), 0);
    EXPECT_EQ(installationOf(QFile::decodeName(name + "/Pavonel.app/pavonel")).limitation(),
              QStringLiteral("Pavonel cannot update itself in a folder whose name is no UTF-8 text."));
    ::rmdir(name.constData()); // which Qt cannot
}

TEST_F(LinuxInstallationTest, a_copy_is_replaced_by_one_process_at_a_time) {
    const QString script = path(temporary + QStringLiteral("/script"));
    LinuxInstallation one = inBundle();
    LinuxInstallation other = inBundle();
    EXPECT_TRUE(one.beginReplacing(script));
    EXPECT_FALSE(one.beginReplacing(script));
    EXPECT_FALSE(other.beginReplacing(script));
    one.abandonReplacing();
    EXPECT_TRUE(other.beginReplacing(script));
    EXPECT_FALSE(one.beginReplacing(script));
}

TEST_F(LinuxInstallationTest, a_process_that_ends_replaces_nothing_more) {
    const QString script = path(temporary + QStringLiteral("/script"));
    LinuxInstallation installation = inBundle();
    inChild([&] { EXPECT_TRUE(installation.beginReplacing(script)); });
    EXPECT_TRUE(inBundle().beginReplacing(script));
}

TEST_F(LinuxInstallationTest, a_copy_is_being_replaced_as_long_as_the_script_runs) {
    const QString script = addScript(QStringLiteral("script"), "touch runs; while :; do sleep 1; done");
    {
        const ChildProcess shell(QStringLiteral("/bin/bash"), {script});
        ASSERT_TRUE(appears(QStringLiteral("runs")));
        EXPECT_FALSE(inBundle().beginReplacing(script));
        EXPECT_TRUE(inBundle().beginReplacing(script + QStringLiteral("-2")));
    }
    EXPECT_TRUE(inBundle().beginReplacing(script));
}

TEST_F(LinuxInstallationTest, another_user_who_names_the_script_holds_up_nobody) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "Only root can be another user.";
    const QString script = path(QStringLiteral("script"));
    ChildProcess other(QStringLiteral("setpriv"),
                       {QStringLiteral("--reuid=1"), QStringLiteral("cat"), script, QStringLiteral("-")});
    ASSERT_TRUE(waitUntil([&] {
        QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(other.process().processId()));
        return commandLine.open(QFile::ReadOnly) && commandLine.readAll().startsWith("cat");
    }));
    EXPECT_TRUE(inBundle().beginReplacing(script));
    EXPECT_TRUE(other.isRunning());
}

TEST_F(LinuxInstallationTest, the_temporary_folder_is_made_for_its_user_alone) {
    EXPECT_EQ(inBundle().temporaryFolder(), path(temporary));
    EXPECT_EQ(modeOf(temporary), 0700U);
}

TEST_F(LinuxInstallationTest, no_folder_that_is_made_on_the_way_is_open_to_others_whatever_the_mask) {
    const mode_t before = ::umask(0);
    EXPECT_EQ(inBundle().temporaryFolder(), path(temporary));
    ::umask(before);
    for (const char *made : {"cache", "cache/pavonel", "cache/pavonel/tmp"})
        EXPECT_EQ(modeOf(QString::fromUtf8(made)), 0700U) << made;
}

TEST_F(LinuxInstallationTest, a_temporary_folder_that_is_open_to_others_is_closed) {
    QDir(folder()).mkpath(temporary);
    setMode(temporary, 0777);
    EXPECT_EQ(inBundle().temporaryFolder(), path(temporary));
    EXPECT_EQ(modeOf(temporary), 0700U);
}

TEST_F(LinuxInstallationTest, a_temporary_folder_that_is_something_else_is_none) {
    QDir(folder()).mkpath(QStringLiteral("cache/pavonel"));
    write(temporary, "a file");
    EXPECT_EQ(inBundle().temporaryFolder(), QString());
    QFile::remove(path(temporary));
    QFile::link(path(QStringLiteral("program")), path(temporary));
    EXPECT_EQ(inBundle().temporaryFolder(), QString()) << "a link, to who knows where";
}

TEST_F(LinuxInstallationTest, a_temporary_folder_that_others_could_exchange_is_none) {
    QDir(folder()).mkpath(QStringLiteral("cache"));
    setMode(QStringLiteral("cache"), 0777);
    EXPECT_EQ(inBundle().temporaryFolder(), QString());
    setMode(QStringLiteral("cache"), 0770);
    EXPECT_EQ(inBundle().temporaryFolder(), QString());
    setMode(QStringLiteral("cache"), 01777);
    EXPECT_EQ(inBundle().temporaryFolder(), path(temporary)) << "as in /tmp";
    setMode(QStringLiteral("cache"), 0755);
    if (::chown(QFile::encodeName(path(QStringLiteral("cache"))).constData(), 1, 1) != 0)
        GTEST_SKIP() << "Only root can give folders away.";
    EXPECT_EQ(inBundle().temporaryFolder(), QString()) << "its owner could";
}

TEST_F(LinuxInstallationTest, a_temporary_folder_behind_a_link_is_the_folder_itself) {
    QDir(folder()).mkpath(QStringLiteral("real/pavonel/tmp"));
    QFile::link(path(QStringLiteral("real")), path(QStringLiteral("cache")));
    EXPECT_EQ(inBundle().temporaryFolder(), path(QStringLiteral("real/pavonel/tmp")));
}

} // namespace pavonel::test
