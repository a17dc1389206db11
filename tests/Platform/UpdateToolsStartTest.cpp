#include "Platform/UpdateTools.h"

#include <QFileInfo>

namespace pavonel::test {

namespace {

/// What stands in for open and xattr, and the making of keys.
class UpdateToolsStart : public UpdateTools {
protected:
    ChildProcess::Result makeKeys(const QString &team, const QString &where) const {
        return ChildProcess::run(QStringLiteral(PAVONEL_SOURCE_DIR "/packaging/make-keys"),
                                 {QStringLiteral("--without-passphrase"), team, where});
    }
};

} // namespace

TEST_F(UpdateToolsStart, open_starts_the_program_and_returns) {
    addScript(QStringLiteral("image/Pavonel.app/pavonel"), leaveAlive);
    EXPECT_EQ(run("open", {bundle()}).status, 0);
    EXPECT_TRUE(appears(QStringLiteral("alive.pid")));
}

TEST_F(UpdateToolsStart, what_was_opened_has_a_session_of_its_own_and_nobody_to_talk_to) {
    addScript(QStringLiteral("image/Pavonel.app/pavonel"),
              "readlink /proc/$$/fd/0 /proc/$$/fd/2 >files\n"
              "[ \"$(ps -o sid= -p $$)\" -eq $$ ] && echo own >new; mv new session\n");
    EXPECT_EQ(run("open", {bundle()}).status, 0);
    EXPECT_TRUE(appears(QStringLiteral("session")));
    EXPECT_EQ(read(QStringLiteral("session")), "own\n");
    EXPECT_EQ(read(QStringLiteral("files")), "/dev/null\n/dev/null\n");
}

TEST_F(UpdateToolsStart, open_takes_any_name_of_a_bundle) {
    addScript(QStringLiteral("a b's.app/pavonel"), "touch started");
    EXPECT_EQ(run("open", {path(QStringLiteral("a b's.app"))}).status, 0);
    EXPECT_TRUE(appears(QStringLiteral("started")));
}

TEST_F(UpdateToolsStart, open_starts_a_program_without_a_bundle) {
    EXPECT_EQ(run("open", {addScript(QStringLiteral("elsewhere/program"), "touch started")}).status, 0);
    EXPECT_TRUE(appears(QStringLiteral("started")));
}

TEST_F(UpdateToolsStart, open_fails_without_a_program) {
    EXPECT_EQ(run("open", {bundle()}).status, 1);
    write(QStringLiteral("image/Pavonel.app/pavonel"), "not executable");
    EXPECT_EQ(run("open", {bundle()}).status, 1);
    EXPECT_EQ(run("open", {path(QStringLiteral("nothing"))}).status, 1);
    EXPECT_EQ(run("open", {QStringLiteral("-a")}).status, 64);
    EXPECT_EQ(run("open", {}).status, 64);
}

TEST_F(UpdateToolsStart, xattr_leaves_a_bundle_alone) {
    write(QStringLiteral("image/Pavonel.app/data"), "data");
    EXPECT_EQ(run("xattr", {QStringLiteral("-dr"), QStringLiteral("com.apple.quarantine"), bundle()}).status,
              0);
    EXPECT_EQ(read(QStringLiteral("image/Pavonel.app/data")), "data");
}

TEST_F(UpdateToolsStart, a_private_key_is_for_its_owner_alone) {
    const QFileInfo key(path(QStringLiteral("keys/TEAM1.key")));
    EXPECT_FALSE(key.permissions() & (QFile::ReadGroup | QFile::ReadOther));
    EXPECT_TRUE(read(QStringLiteral("keys/TEAM1.key.pub")).startsWith("ssh-ed25519 "));
}

TEST_F(UpdateToolsStart, a_key_is_never_made_over_another) {
    const QByteArray before = read(QStringLiteral("keys/TEAM1.key"));
    EXPECT_EQ(makeKeys(QStringLiteral("TEAM1"), path(QStringLiteral("keys"))).status, 1);
    EXPECT_EQ(read(QStringLiteral("keys/TEAM1.key")), before);
}

TEST_F(UpdateToolsStart, a_key_is_never_made_within_the_source_tree) {
    const auto within = QStringLiteral(PAVONEL_SOURCE_DIR "/packaging/../build/new-keys");
    EXPECT_EQ(makeKeys(QStringLiteral("TEAM1"), within).status, 1);
    EXPECT_FALSE(QFile::exists(within));
}

TEST_F(UpdateToolsStart, a_team_identifier_is_letters_and_digits) {
    EXPECT_EQ(makeKeys(QStringLiteral("A*"), path(QStringLiteral("more"))).status, 1);
    EXPECT_EQ(makeKeys(QStringLiteral("../A"), path(QStringLiteral("more"))).status, 1);
    EXPECT_EQ(makeKeys(QString(), path(QStringLiteral("more"))).status, 1);
}

} // namespace pavonel::test
