#include "Platform/UpdateTools.h"

namespace pavonel::test {

namespace {

/// What stands in for hdiutil.
class UpdateToolsImage : public UpdateTools {
protected:
    UpdateToolsImage() {
        shell(
            "echo program >$app/pavonel; chmod 755 $app/pavonel; echo data >$app/data; chmod 640 $app/data");
    }

    /// Packs "image" as "disk.dmg".
    void pack() const { shell("mksquashfs image disk.dmg -quiet -no-progress -noappend -no-xattrs"); }

    ChildProcess::Result attach(const char *image = "disk.dmg") const {
        return run("hdiutil", attachArguments(image));
    }
    QStringList attachArguments(const char *image = "disk.dmg") const {
        return {QStringLiteral("attach"), path(QString::fromUtf8(image)), QStringLiteral("-nobrowse"),
                QStringLiteral("-quiet"), QStringLiteral("-mountpoint"),  point()};
    }
    ChildProcess::Result detach(const QString &where) const {
        return run("hdiutil", {QStringLiteral("detach"), where, QStringLiteral("-quiet")});
    }
    QString point() const { return path(QStringLiteral("point")); }

    void expectRefused(const ChildProcess::Result &result, const char *sentence) const {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors.trimmed().toStdString(), sentence);
        EXPECT_FALSE(exists(QStringLiteral("point"))) << "something was left behind";
    }
};

constexpr char noImage[] = "That file is not a disk image, or it is damaged.";
constexpr char odd[] = "The disk image holds files that no release has.";

} // namespace

TEST_F(UpdateToolsImage, an_attached_image_shows_its_files_as_they_were_packed) {
    shell("mkdir \"$app/-d e\"; ln -s ../data \"$app/-d e/l\"");
    pack();
    const auto result = attach();
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_EQ(result.output + result.errors, "");
    shell("[[ $(stat -c %a point/Pavonel.app/pavonel) == 755 && $(stat -c %a point/Pavonel.app/data) == 640 "
          "]]\n"
          "[[ $(<\"point/Pavonel.app/-d e/l\") == data ]]");
}

TEST_F(UpdateToolsImage, an_attached_image_is_for_its_user_alone) {
    shell("chmod 777 image");
    pack();
    EXPECT_EQ(attach().status, 0);
    shell("[[ $(stat -c %a point) == 700 ]]");
}

TEST_F(UpdateToolsImage, what_becomes_of_the_image_does_not_change_what_is_attached) {
    pack();
    EXPECT_EQ(attach().status, 0);
    shell("echo other >disk.dmg; [[ $(<point/Pavonel.app/data) == data ]]");
}

TEST_F(UpdateToolsImage, detaching_leaves_nothing_behind) {
    shell("mkdir $app/shut; touch $app/shut/file; chmod 555 $app/shut");
    pack();
    EXPECT_EQ(attach().status, 0);
    EXPECT_EQ(detach(point()).status, 0);
    EXPECT_FALSE(exists(QStringLiteral("point")));
    shell("chmod 755 $app/shut"); // or nobody could remove it
}

TEST_F(UpdateToolsImage, only_what_was_attached_is_detached) {
    shell("mkdir point mine; touch point/file");
    EXPECT_EQ(detach(point()).status, 1);
    EXPECT_TRUE(exists(QStringLiteral("point/file")));
}

TEST_F(UpdateToolsImage, a_copy_of_what_was_attached_is_not_detached) {
    pack();
    EXPECT_EQ(attach().status, 0);
    shell("cp -R point copy; ln -s point link");
    EXPECT_EQ(detach(path(QStringLiteral("copy"))).status, 1);
    EXPECT_EQ(detach(path(QStringLiteral("link"))).status, 1);
    EXPECT_TRUE(exists(QStringLiteral("copy/Pavonel.app")));
    EXPECT_TRUE(exists(QStringLiteral("point/Pavonel.app")));
}

TEST_F(UpdateToolsImage, detaching_does_not_follow_links) {
    shell("mkdir mine; touch mine/file; ln -s \"$0/mine\" image/link");
    pack();
    EXPECT_EQ(attach().status, 0);
    EXPECT_EQ(detach(point()).status, 0);
    EXPECT_TRUE(exists(QStringLiteral("mine/file")));
}

TEST_F(UpdateToolsImage, nothing_is_attached_over_what_exists) {
    pack();
    shell("mkdir point; touch point/file");
    EXPECT_EQ(attach().status, 1);
    shell("[[ $(ls -A point) == file ]]; rm -r point; ln -s elsewhere point");
    EXPECT_EQ(attach().status, 1);
    EXPECT_FALSE(exists(QStringLiteral("elsewhere")));
}

TEST_F(UpdateToolsImage, a_file_that_is_no_image_is_refused) {
    write(QStringLiteral("disk.dmg"), "<html>Not found</html>");
    expectRefused(attach(), noImage);
    write(QStringLiteral("disk.dmg"), "");
    expectRefused(attach(), noImage);
}

TEST_F(UpdateToolsImage, a_truncated_image_is_refused) {
    shell("head -c 200000 /dev/urandom >$app/noise");
    pack();
    shell("truncate -s -4096 disk.dmg");
    expectRefused(attach(), noImage);
}

TEST_F(UpdateToolsImage, an_image_with_damaged_contents_is_refused) {
    shell("head -c 200000 /dev/zero >$app/zeros");
    pack();
    shell("dd if=/dev/urandom of=disk.dmg bs=1 seek=100 count=60 conv=notrunc status=none");
    EXPECT_EQ(attach().status, 1);
    EXPECT_FALSE(exists(QStringLiteral("point")));
}

TEST_F(UpdateToolsImage, whatever_the_environment_a_failed_attach_leaves_nothing_and_a_good_one_is_detached) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("POSIXLY_CORRECT"), QStringLiteral("1"));
    environment.insert(QStringLiteral("PATH"), QString());
    environment.insert(QStringLiteral("BASH_FUNC_rm%%"), QStringLiteral("() { true; }"));
    environment.insert(QStringLiteral("CDPATH"), folder());
    const auto hdiutil = [&](const QStringList &arguments) {
        return ChildProcess::run(files().tool(QStringLiteral("hdiutil")), arguments, environment);
    };
    pack();
    const auto attached = hdiutil(attachArguments());
    EXPECT_EQ(attached.status, 0) << attached.errors.toStdString();
    const auto detached = hdiutil({QStringLiteral("detach"), point(), QStringLiteral("-quiet")});
    EXPECT_EQ(detached.status, 0) << detached.errors.toStdString();
    EXPECT_FALSE(exists(QStringLiteral("point")));
    shell("touch image/.attached"); // unpacked, and then refused
    pack();
    expectRefused(hdiutil(attachArguments()), odd);
}

TEST_F(UpdateToolsImage, an_image_that_is_not_there_is_refused) {
    expectRefused(attach("other.dmg"), "There is no disk image of that name.");
}

TEST_F(UpdateToolsImage, files_with_special_permissions_are_refused) {
    for (const char *mode : {"4755", "2755", "1755"}) {
        shell("chmod " + QByteArray(mode) + " $app/pavonel");
        pack();
        expectRefused(attach(), odd);
    }
}

TEST_F(UpdateToolsImage, special_files_are_refused) {
    shell("mkfifo $app/pipe");
    pack();
    expectRefused(attach(), odd);
}

TEST_F(UpdateToolsImage, a_name_that_cannot_be_read_is_refused) {
    shell("touch $app/$'a\\nb'");
    pack();
    expectRefused(attach(), odd);
}

// A file system that does not tell two names apart would write the file through the link.
TEST_F(UpdateToolsImage, names_that_differ_by_their_case_alone_are_refused) {
    for (const char *commands : {"ln -s x $app/A; touch $app/a", "ln -s x $app/D; mkdir $app/d",
                                 "ln -s x \"$app/A -> b\"; touch \"$app/a -> b\""}) {
        shell(commands);
        pack();
        expectRefused(attach(), odd);
        shell("rm -r $app/[ADad]*; touch $app/data");
    }
}

TEST_F(UpdateToolsImage, names_beyond_plain_letters_are_refused) {
    for (const char *name : {"\xc3\xa9", "a\tb", "a\x1b[2J"}) {
        shell(QByteArray("touch \"$app/") + name + '"');
        pack();
        expectRefused(attach(), odd);
        shell(QByteArray("rm \"$app/") + name + '"');
    }
}

TEST_F(UpdateToolsImage, names_with_blanks_and_arrows_are_accepted) {
    shell("touch \"$app/x 12:34 a\" \"$app/y 12:34 a\" \"$app/c -> d\"; ln -s data \"$app/e -> f\"");
    pack();
    EXPECT_EQ(attach().status, 0);
    EXPECT_TRUE(exists(QStringLiteral("point/Pavonel.app/x 12:34 a")));
}

TEST_F(UpdateToolsImage, names_that_lead_elsewhere_are_refused) {
    shell("touch $app/f1 $app/f2; mksquashfs image disk.dmg -quiet -no-progress -noappend -noI; mv disk.dmg "
          "good");
    for (const char *forged :
         {"s/\\x01\\x00f1/\\x01\\x00../", "s/\\x01\\x00f1/\\x01\\x00\\/x/", "s/\\x01\\x00f2/\\x01\\x00f1/"}) {
        shell("LC_ALL=C sed '" + QByteArray(forged) + "' good >disk.dmg; ! cmp -s good disk.dmg");
        expectRefused(attach(), noImage);
    }
}

TEST_F(UpdateToolsImage, a_name_of_our_own_is_refused) {
    shell("touch image/.attached");
    pack();
    expectRefused(attach(), odd);
}

TEST_F(UpdateToolsImage, an_image_that_swells_is_refused_before_it_does) {
    shell("truncate -s 1100M $app/zeros");
    pack();
    expectRefused(attach(), "The disk image holds more than 1024 MB.");
}

TEST_F(UpdateToolsImage, sizes_beyond_all_counting_are_refused) { // four times 2^62, which overflows to 0
    shell(
        "truncate -s 1193046 $app/f{1,2,3,4}; mksquashfs image disk.dmg -quiet -no-progress -noappend -noI\n"
        "LC_ALL=C sed -i 's/\\x56\\x34\\x12\\x00\\{5\\}/\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x40/g' "
        "disk.dmg");
    expectRefused(attach(), "The disk image holds more than 1024 MB.");
}

TEST_F(UpdateToolsImage, an_image_of_too_many_files_is_refused) {
    shell("mkdir $app/many; cd $app/many; seq 20100 | xargs touch");
    pack();
    expectRefused(attach(), odd);
}

TEST_F(UpdateToolsImage, an_image_that_does_not_fit_on_the_disk_is_refused) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test mount a small disk.";
    shell("truncate -s 9M $app/zeros; mkdir small");
    pack();
    QStringList arguments = attachArguments();
    arguments.last() = path(QStringLiteral("small/point"));
    const auto script = QStringLiteral("mount -t tmpfs -o size=4m none small && \"$0\" \"$@\"; "
                                       "status=$?; ls -A small; exit $status");
    const auto result =
        ChildProcess::run(QStringLiteral("unshare"),
                          QStringList{QStringLiteral("-rm"), QStringLiteral("bash"), QStringLiteral("-c"),
                                      QStringLiteral("cd '%1'; ").arg(folder()) + script,
                                      files().tool(QStringLiteral("hdiutil"))} +
                              arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.trimmed().toStdString(), "The disk image needs 10 MB of room on the disk.");
    EXPECT_EQ(result.output, "");
}

TEST_F(UpdateToolsImage, without_the_unpacker_it_says_what_to_install) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test hide a program.";
    pack();
    expectRefused(
        runWithout("unsquashfs", "hdiutil", attachArguments()),
        "Disk images need the program unsquashfs (package squashfs-tools), which is not installed.");
}

TEST_F(UpdateToolsImage, only_the_known_arguments_are_understood) {
    pack();
    for (int left = 0; left < 6; ++left) {
        QStringList arguments = attachArguments();
        arguments.removeAt(left);
        EXPECT_EQ(run("hdiutil", arguments).status, 64) << "without argument " << left;
        arguments = attachArguments();
        arguments[left] = QStringLiteral("-readonly");
        EXPECT_EQ(run("hdiutil", arguments).status, 64) << "another argument " << left;
    }
    EXPECT_EQ(run("hdiutil", attachArguments() << QStringLiteral("-owners")).status, 64);
    EXPECT_EQ(
        run("hdiutil", {QStringLiteral("detach"), QStringLiteral("/"), QStringLiteral("-quiet")}).status, 64);
    EXPECT_EQ(run("hdiutil", {QStringLiteral("detach"), point(), QStringLiteral("-force")}).status, 64);
    EXPECT_FALSE(exists(QStringLiteral("point")));
}

} // namespace pavonel::test
