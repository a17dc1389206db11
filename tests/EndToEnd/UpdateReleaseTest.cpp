#include "EndToEnd/ReleaseFixture.h"
#include "support/waitUntil.h"

#include <QCryptographicHash>
#include <QJsonDocument>

#include <csignal>

namespace pavonel::test {

namespace {

/// What packaging/make-release makes.
class UpdateRelease : public ReleaseFixture {
protected:
    QJsonObject feed() const { return QJsonDocument::fromJson(read("site/updates.json")).object(); }

    void expectRefused(const QByteArray &command, const char *sentence) {
        const auto result = tryShell(command);
        EXPECT_NE(result.status, 0) << command.toStdString();
        EXPECT_EQ(result.errors.trimmed().toStdString(), sentence);
        EXPECT_FALSE(exists("site/updates.json")) << "it is offered all the same";
    }
};

} // namespace

TEST_F(UpdateRelease, holds_everything_that_the_program_needs_and_nothing_else) {
    shell("make_release 1.0; unpack 1.0; cp -R \"$build/libexec/pavonel\" tools; touch tools/team-signers\n"
          "cmp <(ls image) <(echo Pavonel.app)\n"
          "cmp <(ls image/Pavonel.app) <(printf '%s\\n' libexec manifest manifest.sig pavonel resources "
          "version)\n"
          "cmp <(ls image/Pavonel.app/libexec) <(echo pavonel)\n"
          "cmp <(ls image/Pavonel.app/libexec/pavonel) <(ls tools)\n"
          "diff -r image/Pavonel.app/resources/sounds \"$build/resources/sounds\"\n"
          "[[ $(<image/Pavonel.app/version) == 1.0 ]]");
}

TEST_F(UpdateRelease, holds_no_private_key) {
    EXPECT_EQ(shell("make_release 1.0; unpack 1.0; ! grep -rla 'PRIVATE KEY' image"), "");
}

TEST_F(UpdateRelease, has_the_version_of_the_build_unless_told_otherwise) {
    shell("\"$project/packaging/make-release\" --build \"$build\" --key keys/team/$team.key --url \"$url\" "
          "--out site");
    EXPECT_EQ(feed()[u"version"].toString(), QStringLiteral(PAVONEL_VERSION));
    EXPECT_TRUE(exists("site/Pavonel-" PAVONEL_VERSION ".dmg"));
}

TEST_F(UpdateRelease, the_feed_tells_what_the_image_is) {
    write("notes", "\"Quoted\" \\ back\n\ttab, Wölkchen");
    shell("make_release 1.0 --notes notes");
    const QByteArray image = read("site/Pavonel-1.0.dmg");
    QJsonObject told = feed();
    told.remove(u"signature"); // of which the next test is
    EXPECT_EQ(told,
              QJsonObject(
                  {{QStringLiteral("version"), QStringLiteral("1.0")},
                   {QStringLiteral("url"), server.url("/Pavonel-1.0.dmg").toString()},
                   {QStringLiteral("sha256"),
                    QString::fromLatin1(QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex())},
                   {QStringLiteral("notes"), QString::fromUtf8(read("notes"))}}));
}

TEST_F(UpdateRelease, the_feed_holds_the_teams_signature_of_the_image_and_its_version) {
    shell("make_release 1.0; install_release 1.0");
    write("signature", feed()[u"signature"].toString().toUtf8());
    const QByteArray verify = "ssh-keygen -Y verify -f \"$installed/libexec/pavonel/team-signers\" -I $team "
                              "-n pavonel-image -s ../signature";
    EXPECT_EQ(tryShell("cd site; sha256sum Pavonel-1.0.dmg | " + verify).status, 0);
    EXPECT_NE(tryShell("cd site; mv Pavonel-{1.0,1.1}.dmg; sha256sum Pavonel-1.1.dmg | " + verify).status, 0);
}

TEST_F(UpdateRelease, the_same_build_gives_the_same_image) {
    EXPECT_EQ(shell("make_release 1.0; mv site first; sleep 1; umask 077\n"
                    "SOURCE_DATE_EPOCH=1 make_release 1.0\n"
                    "cmp {first,site}/Pavonel-1.0.dmg"),
              "");
}

TEST_F(UpdateRelease, runs_from_wherever_it_lies) {
    shell("make_release 1.0; install_release 1.0; mkdir 'a b'; mv Applications/Pavonel.app \"a b/it's "
          "mine.app\"");
    write("config/pavonel/defaults.json",
          R"({"didOnboard": true, "launchAtLogin": false, "autoUpdate": false, "microInterval": 2,
              "preNotifySeconds": 0, "soundEnabled": false, "onBreakStartScript": "touch \"$HOME/started\""})");
    home.use(path("a b/it's mine.app/pavonel"));
    home.start();
    EXPECT_TRUE(waitUntil([&] { return exists("started"); })) << "its tools are not found";
    EXPECT_EQ(home.end(SIGTERM), 0);
}

TEST_F(UpdateRelease, a_key_within_the_source_tree_is_refused) {
    expectRefused("cp -R \"$project/packaging\" \"$PWD\"; cp keys/team/* packaging\n"
                  "packaging/make-release --build \"$build\" --key packaging/$team.key --url u --out site",
                  "make-release: a private key does not belong into the source tree");
}

TEST_F(UpdateRelease, a_version_that_no_copy_would_take_is_refused) {
    for (const char *version : {"''", "../1", "'1 0'", "'1\"0'", "'$(touch x)'", "$'1\\n0'",
                                "11111111111111111111111111111111111111111111111111111111111111111"})
        expectRefused("make_release " + QByteArray(version),
                      "make-release: a version is up to 64 letters, digits, '.', '-', '+' and '_'");
}

TEST_F(UpdateRelease, notes_that_are_no_text_are_refused) {
    write("notes", "bell \a");
    expectRefused("make_release 1.0 --notes notes",
                  "make-release: the release notes hold characters that are no text");
}

TEST_F(UpdateRelease, a_build_that_is_not_finished_makes_no_release) {
    EXPECT_NE(tryShell("mkdir empty; build=$PWD/empty; make_release 1.0").status, 0);
    EXPECT_FALSE(exists("site/updates.json"));
}

TEST_F(UpdateRelease, a_team_can_change_its_key) {
    shell("make_release 1.0 --trust keys/stranger/$team.key.pub; install_release 1.0\n"
          "make_release 1.1; unpack 1.1; sign stranger\n"
          "\"$installed/libexec/pavonel/codesign\" --verify --deep --strict \\\n"
          "    \"-R=anchor apple generic and certificate leaf[subject.OU] = \\\"$team\\\"\" "
          "\"$PWD/image/Pavonel.app\"");
}

TEST_F(UpdateRelease, a_key_file_without_a_last_line_feed_is_trusted_too) {
    shell("truncate -s -1 keys/stranger/$team.key.pub\n"
          "make_release 1.0 --trust keys/stranger/$team.key.pub; unpack 1.0\n"
          "[[ $(wc -l <image/Pavonel.app/libexec/pavonel/team-signers) == 2 ]]");
}

} // namespace pavonel::test
