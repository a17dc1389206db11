#include "EndToEnd/ReleaseFixture.h"

#include <csignal>
#include <ostream>

namespace pavonel::test {

namespace {

/// Somebody has the feed, the site or the line in hand, but not the team's key.
class UpdateAttack : public ReleaseFixture {
protected:
    UpdateAttack() { // What is attacked is the real program; what is offered to it need only look like one.
        shell("bundle \"$installed\" 1.0 \"$build/pavonel\"; bundle image/Pavonel.app 1.1 /bin/true; mkdir "
              "site");
    }

    /// The installed copy refuses with this sentence and is, byte for byte, what it was.
    void expectRefused(const QByteArray &sentence) {
        const QByteArray before = fingerprint();
        const auto update = updateNow();
        EXPECT_EQ(update.status, 1) << update.errors.toStdString();
        EXPECT_EQ(update.lines.value(0), "current version: 1.0");
        EXPECT_EQ(update.lines.last().toStdString(), ("failed: " + sentence).toStdString());
        EXPECT_EQ(fingerprint(), before) << "the installed copy was touched";
        EXPECT_TRUE(processes().empty());
        EXPECT_EQ(shell("ls -d cache/pavonel/tmp/{pavonel-update-*,Pavonel-staged-*,pavonel-update.sh} "
                        "2>/dev/null || true"),
                  "")
            << "something was left behind";
        EXPECT_FALSE(exists("evil"));
    }

    void offerVersion(const QByteArray &inJson) const {
        write("site/updates.json", "{\"version\": \"" + inJson + "\", \"url\": \"" +
                                       server.url("/Pavonel-1.0.dmg").toEncoded() +
                                       "\", \"sha256\": \"\", \"notes\": \"\"}");
    }
};

struct Attack {
    const char *name;
    const char *commands;
    const char *sentence;
};
void PrintTo(const Attack &attack, std::ostream *out) {
    *out << attack.name;
}

constexpr char stranger[] = "codesign refused the update: It is not signed by the team PAVONELORG.";
constexpr char changed[] = "codesign refused the update: It is not as the team signed it: something in it "
                           "was changed, added or removed.";
constexpr char noImage[] = "hdiutil refused the update: That file is not a disk image, or it is damaged.";
constexpr char odd[] = "hdiutil refused the update: The disk image holds files that no release has.";

#define THEN_OFFER "; pack 1.1; offer 1.1"

const Attack attacks[] = {
    {"unsigned", "resign 1.1; rm image/Pavonel.app/manifest.sig" THEN_OFFER,
     "codesign refused the update: It is not signed."},
    {"signed_by_another_team", "resign 1.1 : stranger" THEN_OFFER, stranger},
    {"signed_by_another_team_that_brings_its_key",
     "resign 1.1 'echo PAVONELORG $(cat ../../keys/stranger/*.pub) >libexec/pavonel/team-signers' "
     "stranger" THEN_OFFER,
     stranger},
    {"one_byte_changed",
     "resign 1.1; printf X | dd of=image/Pavonel.app/pavonel bs=1 seek=5000 conv=notrunc "
     "status=none" THEN_OFFER,
     changed},
    {"a_file_added", "resign 1.1; touch image/Pavonel.app/libexec/pavonel/mv" THEN_OFFER, changed},
    {"a_file_removed", "resign 1.1; rm image/Pavonel.app/resources/sounds/Pop.wav" THEN_OFFER, changed},
    {"a_file_renamed",
     "resign 1.1; mv image/Pavonel.app/libexec/pavonel/xattr "
     "image/Pavonel.app/libexec/pavonel/rm" THEN_OFFER,
     changed},
    {"two_files_exchanged",
     "resign 1.1; cd image/Pavonel.app/libexec/pavonel; mv open x; mv xattr open; mv x xattr; cd - "
     ">/dev/null" THEN_OFFER,
     changed},
    {"a_file_made_executable", "resign 1.1; chmod +x image/Pavonel.app/resources/sounds/Pop.wav" THEN_OFFER,
     changed},
    {"a_file_made_set_uid", "resign 1.1; chmod u+s image/Pavonel.app/pavonel" THEN_OFFER, odd},
    {"a_folder_that_nobody_could_replace_again",
     "resign 1.1; chmod 555 image/Pavonel.app/libexec/pavonel" THEN_OFFER "; chmod 755 "
     "image/Pavonel.app/libexec/pavonel",
     changed},
    {"a_device", "resign 1.1; mkfifo image/Pavonel.app/pipe" THEN_OFFER, odd},
    {"a_link_out_of_the_bundle",
     "resign 1.1; rm image/Pavonel.app/resources/sounds/Pop.wav; ln -s /etc/passwd "
     "image/Pavonel.app/resources/sounds/Pop.wav" THEN_OFFER,
     changed},
    {"a_link_out_of_the_bundle_that_the_team_signed", "resign 1.1 'ln -s ../.. up'" THEN_OFFER,
     "spctl refused the update: It holds links that lead out of it."},
    {"a_program_for_another_machine_that_the_team_signed",
     "resign 1.1 'printf \"\\xf3\" | dd of=pavonel bs=1 seek=18 conv=notrunc status=none'" THEN_OFFER,
     "spctl refused the update: It was made for another kind of computer."},
    {"the_application_under_another_name", "resign 1.1; mv image/Pavonel.app image/Pavonel2.app" THEN_OFFER,
     "That disk image does not contain Pavonel."},
    {"the_application_as_a_link",
     "resign 1.1; mv image/Pavonel.app image/real; ln -s real image/Pavonel.app" THEN_OFFER,
     "codesign refused the update: There is no application to check."},
    {"an_old_release_under_a_new_number", "resign 1.0; pack 1.1; offer 1.1",
     "That disk image contains version 1.0 instead of 1.1. Nothing was installed."},
    {"an_older_release_that_says_so", "resign 0.9; pack 1.1; offer 1.1",
     "That disk image contains version 0.9 instead of 1.1. Nothing was installed."},
    {"a_wrong_checksum", "resign 1.1" THEN_OFFER "; echo >>site/Pavonel-1.1.dmg",
     "The download does not match its checksum. Nothing was installed."},
    {"an_empty_checksum",
     "resign 1.1" THEN_OFFER "; sed -i 's/\"sha256\": \"[^\"]*/\"sha256\": \"/' site/updates.json",
     "The download does not match its checksum. Nothing was installed."},
    {"a_truncated_image", "resign 1.1; pack 1.1; truncate -s -8192 site/Pavonel-1.1.dmg; offer 1.1", noImage},
    {"an_image_that_is_none", "echo '<html>' >site/Pavonel-1.1.dmg; offer 1.1", noImage},
    {"an_empty_image", ": >site/Pavonel-1.1.dmg; offer 1.1", noImage},
    {"an_image_whose_signature_is_another_teams", "resign 1.1; pack 1.1; offer_signed 1.1 stranger",
     stranger},
    {"an_image_whose_signature_is_that_of_another_version",
     "resign 1.1; pack 1.1; offer_signed 1.1 team Pavonel-1.0.dmg", stranger},
    {"an_image_that_is_none_is_not_opened_when_its_signature_is_wrong",
     "echo '<html>' >site/Pavonel-1.1.dmg; offer_signed 1.1 stranger", stranger},
    {"a_program_that_the_group_may_change", "resign 1.1; chmod g+w image/Pavonel.app/pavonel" THEN_OFFER,
     changed},
    {"a_folder_that_all_may_change", "resign 1.1; chmod a+w image/Pavonel.app/resources" THEN_OFFER, changed},
};

class UpdateAttackImage : public UpdateAttack, public testing::WithParamInterface<Attack> {};

} // namespace

TEST_P(UpdateAttackImage, is_refused) {
    shell(GetParam().commands);
    expectRefused(GetParam().sentence);
}

INSTANTIATE_TEST_SUITE_P(Of, UpdateAttackImage, testing::ValuesIn(attacks),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_F(UpdateAttack, a_version_that_is_none_is_refused_before_anything_is_downloaded) {
    for (const char *version : {"9./../../evil", "9.\\\" evil", "9.$(touch evil)", "9.\\ntouch evil",
                                "9.1111111111111111111111111111111111111111111111111111111111111111111111"}) {
        offerVersion(version);
        expectRefused("The update server names a version that is none. Nothing was installed.");
    }
    for (const auto &request : server.requests())
        EXPECT_EQ(request.line(), "GET /updates.json HTTP/1.1");
}

TEST_F(UpdateAttack, once_a_feed_was_signed_one_without_a_signature_is_refused) {
    shell("resign 1.0; pack 1.1; offer_signed 1.1");
    expectRefused("That disk image contains version 1.0 instead of 1.1. Nothing was installed.");
    shell("resign 1.1" THEN_OFFER);
    expectRefused("The update server left out the signature of the update. Nothing was installed.");
}

TEST_F(UpdateAttack, once_a_feed_was_signed_that_holds_beside_a_program_that_has_the_store_too) {
    home.start();
    shell("resign 1.0; pack 1.1; offer_signed 1.1");
    expectRefused("That disk image contains version 1.0 instead of 1.1. Nothing was installed.");
    shell("resign 1.1" THEN_OFFER);
    expectRefused("The update server left out the signature of the update. Nothing was installed.");
    EXPECT_EQ(home.end(SIGTERM), 0);
}

TEST_F(UpdateAttack, a_copy_where_others_may_write_is_not_replaced) {
    shell("resign 1.1" THEN_OFFER);
    for (const char *mode : {"1777", "775"}) {
        shell(QByteArray("chmod ") + mode + " Applications");
        expectRefused("Other users may change the folder " + QFile::encodeName(path("Applications")) +
                      ", so Pavonel does not update itself there.");
    }
    shell("chmod 755 Applications; mkdir -p cache/pavonel; chmod 770 cache/pavonel");
    expectRefused("The folder for temporary files cannot be used. Nothing was installed.");
}

TEST_F(UpdateAttack, a_feed_of_ten_million_brackets_is_no_feed) {
    for (const QByteArray &brackets :
         {QByteArray(10'000'000, '['), QByteArray("{\"version\": ") + QByteArray(10'000'000, '[')}) {
        write("site/updates.json", brackets);
        expectRefused("Could not reach the update server.");
    }
}

TEST_F(UpdateAttack, an_image_on_the_own_disk_is_no_download) {
    for (const char *url : {"file:///etc/passwd", "data:,x", "ftp://127.0.0.1/x"}) {
        write("site/updates.json", QByteArray("{\"version\": \"1.1\", \"url\": \"") + url +
                                       "\", \"sha256\": \"\", \"notes\": \"\"}");
        expectRefused("The download did not finish.");
    }
}

TEST_F(UpdateAttack, a_redirection_to_the_own_disk_is_not_followed) {
    shell("resign 1.1" THEN_OFFER);
    answer = [this](const auto &request, auto &connection) {
        if (request.line().contains("updates.json"))
            return HttpServer::respond(200, read("site/updates.json"))(request, connection);
        HttpServer::respond(302, {},
                            "Location: file://" + QFile::encodeName(path("site/Pavonel-1.1.dmg")) +
                                "\r\n")(request, connection);
    };
    expectRefused("The download did not finish.");
}

} // namespace pavonel::test
