#include "Platform/UpdateTools.h"

#include <ostream>

namespace pavonel::test {

namespace {

/// What stands in for codesign, on a bundle that the team signed.
class UpdateToolsSignature : public UpdateTools {
protected:
    UpdateToolsSignature() {
        shell("cp /bin/true $app/pavonel; mkdir $app/resources; echo data >$app/resources/data\n"
              "ln -s resources/data $app/link; sign TEAM1");
    }

    ChildProcess::Result verify(const char *team = "TEAM1") const { return run("codesign", arguments(team)); }
    QStringList arguments(const char *team = "TEAM1") const {
        const auto requirement =
            QStringLiteral("-R=anchor apple generic and certificate leaf[subject.OU] = \"%1\"");
        return {QStringLiteral("--verify"), QStringLiteral("--deep"), QStringLiteral("--strict"),
                requirement.arg(QString::fromUtf8(team)), bundle()};
    }

    static void expectRefused(const ChildProcess::Result &result, const char *sentence) {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors.trimmed().toStdString(), sentence);
    }
    void expectAccepted() const {
        const auto result = verify();
        EXPECT_EQ(result.status, 0) << result.errors.toStdString();
        EXPECT_EQ(result.output + result.errors, "");
    }
};

constexpr char unsigned_[] = "It is not signed.";
constexpr char notByTheTeam[] = "It is not signed by the team TEAM1.";
constexpr char changed[] = "It is not as the team signed it: something in it was changed, added or removed.";

struct Change {
    const char *name;
    const char *commands;
};
void PrintTo(const Change &change, std::ostream *out) {
    *out << change.name;
}

const Change changes[] = {
    {"a_byte", "printf x | dd of=$app/pavonel bs=1 seek=700 conv=notrunc status=none"},
    {"a_byte_more", "echo >>$app/resources/data"},
    {"a_file_more", "touch $app/more"},
    {"a_hidden_file_more", "touch $app/resources/.more"},
    {"a_folder_more", "mkdir $app/more"},
    {"a_link_more", "ln -s pavonel $app/more"},
    {"a_pipe_more", "mkfifo $app/more"},
    {"a_manifest_further_down", "cp $app/manifest $app/resources"},
    {"a_file_less", "rm $app/resources/data"},
    {"a_file_renamed", "mv $app/resources/data $app/resources/date"},
    {"a_file_renamed_by_a_line_break", "mv $app/resources/data $app/resources/data$'\\n'"},
    {"a_file_moved", "mv $app/resources/data $app"},
    {"a_file_made_executable", "chmod +x $app/resources/data"},
    {"a_file_made_executable_for_others", "chmod o+x $app/resources/data"},
    {"a_file_opened_to_its_group", "chmod g+w $app/resources/data"},
    {"a_file_opened_to_all", "chmod a+w $app/resources/data"},
    {"a_file_closed_to_others", "chmod o-r $app/resources/data"},
    {"a_program_opened_to_its_group", "chmod g+w $app/pavonel"},
    {"a_program_that_only_its_owner_may_run", "chmod go-x $app/pavonel"},
    {"a_folder_opened_to_its_group", "chmod g+w $app/resources"},
    {"a_folder_made_sticky", "chmod +t $app/resources"},
    {"a_folder_closed_to_others", "chmod o-rx $app/resources"},
    {"the_whole_opened_to_its_group", "chmod g+w $app"},
    {"a_manifest_opened_to_its_group", "chmod g+w $app/manifest"},
    {"a_signature_opened_to_all", "chmod a+w $app/manifest.sig"},
    {"a_program_made_data", "chmod -x $app/pavonel"},
    {"a_program_made_set_uid", "chmod u+s $app/pavonel"},
    {"a_folder_made_set_gid", "chmod g+s $app/resources"},
    {"a_manifest_made_executable", "chmod +x $app/manifest"},
    {"a_signature_made_executable", "chmod o+x $app/manifest.sig"},
    {"a_link_turned", "ln -sfn pavonel $app/link"},
    {"a_file_turned_into_a_link",
     "mv $app/resources/data elsewhere; ln -s \"$0/elsewhere\" $app/resources/data"},
    {"a_folder_turned_into_a_link", "mv $app/resources elsewhere; ln -s \"$0/elsewhere\" $app/resources"},
    {"a_link_turned_into_a_file", "rm $app/link; cp $app/resources/data $app/link"},
};

class UpdateToolsChange : public UpdateToolsSignature, public testing::WithParamInterface<Change> {};

} // namespace

TEST_F(UpdateToolsSignature, what_the_team_signed_is_accepted) {
    expectAccepted();
}

TEST_F(UpdateToolsSignature, a_copy_of_what_the_team_signed_is_accepted) {
    shell("umask 022; cp -R $app copy; rm -r $app; mv copy $app");
    expectAccepted();
}

TEST_F(UpdateToolsSignature, any_name_can_be_signed) {
    shell("touch $app/$'a\\nb' $app/-n \"$app/ c'\\\\\" $app/$'\\xff' \"$app/*\"; sign TEAM1");
    expectAccepted();
    shell("mv \"$app/*\" \"$app/?\"");
    expectRefused(verify(), changed);
    shell("rm $app/$'\\xff'"); // which Qt cannot remove
}

TEST_P(UpdateToolsChange, is_refused) {
    shell(GetParam().commands);
    expectRefused(verify(), changed);
}

INSTANTIATE_TEST_SUITE_P(Of, UpdateToolsChange, testing::ValuesIn(changes),
                         [](const auto &one) { return std::string(one.param.name); });

// What cannot be removed is in the way of the next version.
TEST_F(UpdateToolsSignature, a_folder_that_its_owner_cannot_empty_is_refused) {
    for (const char *folder : {"$app/resources", "$app"}) {
        for (const char *mode : {"555", "677", "377"}) {
            shell("chmod " + QByteArray(mode) + " " + folder);
            expectRefused(verify(), changed);
            shell(QByteArray("chmod 755 ") + folder);
        }
    }
    expectAccepted();
}

TEST_F(UpdateToolsSignature, an_unsigned_bundle_is_refused) {
    shell("rm $app/manifest.sig");
    expectRefused(verify(), unsigned_);
    shell("sign TEAM1; rm $app/manifest");
    expectRefused(verify(), unsigned_);
}

TEST_F(UpdateToolsSignature, an_empty_or_broken_signature_is_refused) {
    shell(": >$app/manifest.sig");
    expectRefused(verify(), notByTheTeam);
    shell("head -c 100000 /dev/urandom >$app/manifest.sig");
    expectRefused(verify(), notByTheTeam);
}

TEST_F(UpdateToolsSignature, a_signature_that_brings_something_else_along_is_refused) {
    for (const char *commands :
         {"echo more >>$app/manifest.sig", "printf '\\0more' >>$app/manifest.sig", "echo >>$app/manifest.sig",
          "echo ----- >>$app/manifest.sig", "sed -i '2s/^/ /' $app/manifest.sig",
          "sed -i '1s/$/\\n/' $app/manifest.sig"}) {
        shell(QByteArray("sign TEAM1; ") + commands);
        expectRefused(verify(), "Its signature holds something else as well.");
    }
}

TEST_F(UpdateToolsSignature, what_the_environment_brings_decides_nothing) {
    addScript(QStringLiteral("bin/cmp"), "touch evil");
    addScript(QStringLiteral("startup"), "touch evil; cmp() { true; }");
    shell("touch $app/more; cp bin/cmp bin/ssh-keygen; cp bin/cmp bin/dirname");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
                       path(QStringLiteral("bin")) + u':' + environment.value(QStringLiteral("PATH")));
    environment.insert(QStringLiteral("BASH_ENV"), path(QStringLiteral("startup")));
    environment.insert(QStringLiteral("ENV"), path(QStringLiteral("startup")));
    environment.insert(QStringLiteral("BASH_FUNC_cmp%%"), QStringLiteral("() { true; }"));
    environment.insert(QStringLiteral("SHELLOPTS"), QStringLiteral("noexec"));
    environment.insert(QStringLiteral("CDPATH"), path(QStringLiteral("image")));
    environment.insert(QStringLiteral("IFS"), QStringLiteral("/"));
    environment.insert(QStringLiteral("POSIXLY_CORRECT"), QStringLiteral("1"));
    expectRefused(ChildProcess::run(files().tool(QStringLiteral("codesign")), arguments(), environment),
                  changed);
    EXPECT_FALSE(exists(QStringLiteral("evil")));
}

TEST_F(UpdateToolsSignature, a_signature_that_lies_elsewhere_is_refused) {
    shell("mv $app/manifest .; ln -s ../../manifest $app/manifest");
    expectRefused(verify(), unsigned_);
}

TEST_F(UpdateToolsSignature, a_manifest_made_to_fit_is_refused) {
    shell("touch $app/more; '" PAVONEL_SOURCE_DIR
          "'/libexec/bundle-manifest $app >new; mv new $app/manifest");
    expectRefused(verify(), notByTheTeam);
}

TEST_F(UpdateToolsSignature, the_signature_of_another_team_is_refused) {
    shell("sign TEAM2");
    expectRefused(verify(), notByTheTeam);
}

TEST_F(UpdateToolsSignature, a_bundle_cannot_bring_the_key_that_it_is_checked_with) {
    shell("mkdir -p $app/libexec/pavonel; echo TEAM1 $(cat keys/TEAM2.key.pub) >team-signers\n"
          "cp team-signers $app/libexec/pavonel; cp team-signers $app; sign TEAM2");
    expectRefused(verify(), notByTheTeam);
}

TEST_F(UpdateToolsSignature, a_known_key_signs_for_its_own_team_only) {
    expectRefused(verify("TEAM2"), "It is not signed by the team TEAM2.");
}

TEST_F(UpdateToolsSignature, what_the_team_signed_for_another_purpose_is_refused) {
    shell("rm $app/manifest.sig; ssh-keygen -q -Y sign -f keys/TEAM1.key -n file $app/manifest");
    expectRefused(verify(), notByTheTeam);
}

TEST_F(UpdateToolsSignature, either_of_two_keys_of_the_team_will_do) {
    shell("echo TEAM1 $(cat keys/TEAM2.key.pub) >>program/libexec/pavonel/team-signers; sign TEAM2");
    expectAccepted();
}

TEST_F(UpdateToolsSignature, a_copy_without_a_key_refuses_every_update) {
    constexpr char sentence[] = "This copy of Pavonel has no key of its team, so it cannot check an update.";
    shell(": >program/libexec/pavonel/team-signers");
    expectRefused(verify(), sentence);
    shell("rm program/libexec/pavonel/team-signers");
    expectRefused(verify(), sentence);
}

TEST_F(UpdateToolsSignature, without_the_checker_it_says_what_to_install) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test hide a program.";
    expectRefused(runWithout("ssh-keygen", "codesign", arguments()),
                  "Signatures need the program ssh-keygen (package openssh-client), which is not installed.");
}

TEST_F(UpdateToolsSignature, a_requirement_that_is_not_understood_is_refused) {
    for (const char *text :
         {"", "TEAM1", "anchor apple generic", "certificate leaf[subject.OU] = \"TEAM1\"",
          "anchor apple generic and certificate leaf[subject.OU] = TEAM1",
          "anchor apple generic and certificate leaf[subject.OU] = \"\"",
          "anchor apple generic and certificate leaf[subject.OU] = \"*\"",
          "anchor apple generic and certificate leaf[subject.OU] = \"TEAM1\" or anchor apple",
          "anchor apple generic and certificate leaf[subject.OU] = \"TEAM1\"\n",
          "!anchor apple generic and certificate leaf[subject.OU] = \"TEAM1\""}) {
        QStringList all = arguments();
        all[3] = QStringLiteral("-R=") + QString::fromUtf8(text);
        expectRefused(run("codesign", all), "The requirement is not understood.");
    }
}

namespace {

/// A disk image of version 1.0, signed beside itself.
class UpdateToolsImageSignature : public UpdateToolsSignature {
protected:
    UpdateToolsImageSignature() { shell("echo image >Pavonel-1.0.dmg; " + signImage("TEAM1")); }

    static QByteArray signImage(const QByteArray &team, const QByteArray &space = "pavonel-image") {
        return "sha256sum Pavonel-1.0.dmg | ssh-keygen -q -Y sign -f keys/" + team + ".key -n " + space +
               " >image.sig";
    }

    ChildProcess::Result verifyImage(const char *name = "Pavonel-1.0.dmg") const {
        return run("codesign", {QStringLiteral("--verify"), QStringLiteral("--strict"), arguments().at(3),
                                QStringLiteral("--detached"), path(QStringLiteral("image.sig")),
                                path(QString::fromUtf8(name))});
    }
};

} // namespace

TEST_F(UpdateToolsImageSignature, what_the_team_signed_is_accepted) {
    const auto result = verifyImage();
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_EQ(result.output + result.errors, "");
}

TEST_F(UpdateToolsImageSignature, a_changed_image_is_refused) {
    shell("echo >>Pavonel-1.0.dmg");
    expectRefused(verifyImage(), notByTheTeam);
}

TEST_F(UpdateToolsImageSignature, an_image_under_another_version_is_refused) {
    shell("mv Pavonel-1.0.dmg Pavonel-1.1.dmg");
    expectRefused(verifyImage("Pavonel-1.1.dmg"), notByTheTeam);
    expectRefused(verifyImage(), "There is no disk image of that name.");
}

TEST_F(UpdateToolsImageSignature, the_signature_of_another_team_or_of_something_else_is_refused) {
    shell(signImage("TEAM2"));
    expectRefused(verifyImage(), notByTheTeam);
    shell(signImage("TEAM1", "pavonel-release"));
    expectRefused(verifyImage(), notByTheTeam);
    for (const char *commands : {": >image.sig", "head -c 100000 /dev/urandom >image.sig", "rm image.sig"}) {
        shell(commands);
        expectRefused(verifyImage(), notByTheTeam);
    }
}

TEST_F(UpdateToolsSignature, a_link_to_a_signed_bundle_is_refused) {
    shell("mv $app elsewhere; ln -s ../elsewhere $app");
    expectRefused(verify(), "There is no application to check.");
}

TEST_F(UpdateToolsSignature, only_the_known_arguments_are_understood) {
    for (int left = 0; left < 5; ++left) {
        QStringList all = arguments();
        all.removeAt(left);
        EXPECT_EQ(run("codesign", all).status, 64) << "without argument " << left;
        all = arguments();
        all[left] = QStringLiteral("--sign");
        EXPECT_EQ(run("codesign", all).status, 64) << "another argument " << left;
    }
    EXPECT_EQ(run("codesign", arguments() << bundle()).status, 64);
}

TEST_F(UpdateToolsSignature, what_is_special_is_not_signed) {
    for (const char *commands :
         {"mkfifo $app/pipe", "rm $app/pipe; chmod u+s $app/pavonel", "chmod 775 $app/pavonel",
          "chmod 755 $app/pavonel; chmod 666 $app/resources/data"}) {
        shell(QByteArray(commands) + "; ! sign TEAM1");
        expectRefused(verify(), unsigned_);
    }
}

} // namespace pavonel::test
