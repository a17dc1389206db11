#include "support/UpdateFixture.h"

namespace pavonel::test {

namespace {

/// The feed is not signed, so nothing in it is believed.
class UpdaterRefusal : public UpdateFixture {
protected:
    void expectNothingWasDone() const {
        EXPECT_TRUE(platform.web.downloads.empty());
        EXPECT_TRUE(platform.toolRunner.runs.empty());
        EXPECT_TRUE(QDir(folder.path()).isEmpty());
    }

    void expectRefusalAfterTheChecks(const QString &sentence) {
        installWhole({});
        EXPECT_EQ(message(), sentence);
        EXPECT_EQ(toolsRun(), (QStringList{QStringLiteral("attach"), QStringLiteral("codesign"),
                                           QStringLiteral("spctl"), QStringLiteral("detach")}));
        EXPECT_TRUE(platform.launcher.launches.empty());
    }
};

} // namespace

TEST_F(UpdaterRefusal, a_version_that_could_be_more_than_one_is_refused_before_the_download) {
    for (const char *version : {"2/3",        "2/../../../etc",
                                "2 3",        "2\"",
                                "2'",         "2$(touch x)",
                                "2`touch x`", "2\\",
                                "2\n3",       "2;3",
                                "2&",         "2*",
                                "2~",         "2:3",
                                "2!",         "2,",
                                "2\xc3\xa9",  "2\xd9\xa3",
                                "2\x7f",      "2\t"}) {
        installOffer({.version = QString::fromUtf8(version)});
        EXPECT_EQ(message(),
                  QStringLiteral("The update server names a version that is none. Nothing was installed."))
            << version;
    }
}

TEST_F(UpdaterRefusal, a_version_is_at_most_64_characters_long) {
    EXPECT_TRUE(isPlainVersion(QString(64, u'1')));
    EXPECT_FALSE(isPlainVersion(QString(65, u'1')));
    EXPECT_FALSE(isPlainVersion(QString()));
    EXPECT_TRUE(isPlainVersion(QStringLiteral("2.4.1-beta+20261120_x")));
}

TEST_F(UpdaterRefusal, a_refused_version_leaves_no_trace) {
    installOffer({.version = QStringLiteral("2/../3")});
    expectNothingWasDone();
}

TEST_F(UpdaterRefusal, a_copy_that_somebody_else_updates_says_who) {
    platform.copy.reason = QStringLiteral("Your administrator updates it.");
    installOffer({});
    EXPECT_EQ(message(), QStringLiteral("Your administrator updates it."));
    expectNothingWasDone();
}

TEST_F(UpdaterRefusal, a_path_that_quoting_does_not_carry_is_refused_before_the_download) {
    for (const char *name :
         {"a\"b", "a$b", "a`b", "a\\b", "a!b", "a\nb", "a\rb", "a\x1b[b", "a:b", "a\x7f"}) {
        platform.copy.runningBundle = QStringLiteral("/home/%1/Pavonel.app").arg(QString::fromUtf8(name));
        installOffer({});
        EXPECT_TRUE(message().startsWith(QStringLiteral("Pavonel cannot update itself in a folder with ")))
            << name;
    }
    platform.copy.runningBundle = QStringLiteral("/home/a/Pavonel.app");
    platform.copy.temporary = QStringLiteral("/home/a\"b/.cache");
    installOffer({});
    EXPECT_TRUE(message().startsWith(QStringLiteral("Pavonel cannot update itself in a folder with ")));
    expectNothingWasDone();
}

TEST_F(UpdaterRefusal, a_path_with_blanks_quotes_of_the_other_kind_and_other_alphabets_is_carried) {
    for (const char *name :
         {"a b", "it's", "Übung", "家", "a;b", "a&b", "a*b?", "(a)", "#a", "~a", "-a", "a%b"})
        EXPECT_TRUE(canBeQuoted(QStringLiteral("/home/%1/Pavonel.app").arg(QString::fromUtf8(name)))) << name;
}

TEST_F(UpdaterRefusal, without_a_private_folder_nothing_is_downloaded) {
    platform.copy.temporary.clear();
    installOffer({});
    EXPECT_EQ(message(),
              QStringLiteral("The folder for temporary files cannot be used. Nothing was installed."));
    expectNothingWasDone();
}

TEST_F(UpdaterRefusal, while_another_update_is_under_way_nothing_is_done) {
    platform.copy.isBeingReplaced = true;
    installWhole({});
    EXPECT_EQ(message(), QStringLiteral("Another update of Pavonel is under way."));
    EXPECT_EQ(platform.copy.replacingScript, path(QStringLiteral("pavonel-update.sh")));
    EXPECT_TRUE(platform.copy.isBeingReplaced);
    EXPECT_TRUE(platform.toolRunner.runs.empty());
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(UpdaterRefusal, an_update_is_under_way_from_its_first_step_until_it_fails_or_the_program_ends) {
    letFail(QStringLiteral("codesign"), "no");
    platform.toolRunner.answer = [this, work = platform.toolRunner.answer](const QString &tool,
                                                                           const QStringList &arguments) {
        EXPECT_TRUE(platform.copy.isBeingReplaced) << tool.toStdString();
        return work(tool, arguments);
    };
    installWhole({});
    EXPECT_FALSE(platform.copy.isBeingReplaced);
    let(QStringLiteral("codesign"), ToolRunner::Ended{});
    installWhole({});
    EXPECT_TRUE(platform.copy.isBeingReplaced);
}

TEST_F(UpdaterRefusal, an_https_feed_does_not_hand_the_download_to_http) {
    installOffer({.url = QStringLiteral("HTTP://example.org/Pavonel.dmg")});
    EXPECT_EQ(message(),
              QStringLiteral("The update would come over an insecure connection. Nothing was installed."));
    expectNothingWasDone();
}

TEST_F(UpdaterRefusal, an_http_feed_may_name_either) {
    start("http://127.0.0.1:8080/updates.json");
    for (const char *url : {"http://127.0.0.1:8080/p.dmg", "https://example.org/p.dmg"}) {
        installOffer({.url = QString::fromUtf8(url)});
        EXPECT_EQ(platform.web.downloads.back().request.url, QUrl(QString::fromUtf8(url)));
        platform.web.downloads.back().answer({});
        platform.loop.advance(0);
    }
}

TEST_F(UpdaterRefusal, an_old_release_under_a_new_number_is_refused) {
    platform.copy.otherVersion = QStringLiteral("1.0.0");
    expectRefusalAfterTheChecks(
        QStringLiteral("That disk image contains version 1.0.0 instead of 1.3.0. Nothing was installed."));
}

TEST_F(UpdaterRefusal, a_release_that_does_not_tell_its_version_is_refused) {
    platform.copy.otherVersion.reset();
    expectRefusalAfterTheChecks(
        QStringLiteral("That disk image does not tell its version. Nothing was installed."));
}

TEST_F(UpdaterRefusal, a_release_that_is_not_newer_is_refused) {
    for (const char *version : {"1.2.0", "1.1"}) {
        platform.toolRunner.runs.clear();
        platform.copy.otherVersion = QString::fromUtf8(version);
        installWhole({.version = QString::fromUtf8(version)});
        EXPECT_EQ(message(), QStringLiteral("Version %1 is not newer than this one. Nothing was installed.")
                                 .arg(QString::fromUtf8(version)));
        EXPECT_EQ(toolsRun().last(), QStringLiteral("detach"));
    }
    EXPECT_TRUE(platform.launcher.launches.empty());
}

} // namespace pavonel::test
