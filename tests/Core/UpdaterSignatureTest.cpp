#include "support/UpdateFixture.h"

namespace pavonel::test {

namespace {

/// The signature of the image that a feed may bring.
class UpdaterSignature : public UpdateFixture {
protected:
    const Offer signedOffer{.signature = QStringLiteral("signature")};
    const QString ofTheImage = QStringLiteral("codesign of the image");

    bool isRequired() const { return platform.copy.imagesAreSigned; }
    bool isReady() const { return updater->state.get() == Updater::State(Updater::ReadyToRestart{}); }
};

} // namespace

TEST_F(UpdaterSignature, is_checked_before_the_image_is_opened) {
    QByteArray seen;
    platform.toolRunner.answer = [&, work = platform.toolRunner.answer](const QString &tool,
                                                                        const QStringList &arguments) {
        if (arguments.contains(QStringLiteral("--detached")))
            seen = readFile(arguments.value(4));
        return work(tool, arguments);
    };
    installWhole(signedOffer);
    EXPECT_TRUE(isReady());
    EXPECT_EQ(toolsRun().first(2), (QStringList{ofTheImage, QStringLiteral("attach")}));
    const QString dmg = path(QStringLiteral("Pavonel-1.3.0.dmg"));
    EXPECT_EQ(platform.toolRunner.runs[0],
              (Run{QStringLiteral("/usr/bin/codesign"),
                   {QStringLiteral("--verify"), QStringLiteral("--strict"),
                    QStringLiteral("-R=anchor apple generic and certificate leaf[subject.OU] = \"") +
                        Updater::teamID + u'"',
                    QStringLiteral("--detached"), dmg + QStringLiteral(".sig"), dmg}}));
    EXPECT_EQ(seen, "signature");
    EXPECT_FALSE(exists(QStringLiteral("Pavonel-1.3.0.dmg.sig")));
}

TEST_F(UpdaterSignature, that_is_wrong_ends_it_before_the_image_is_opened) {
    letFail(ofTheImage, "It is not signed.");
    installWhole(signedOffer);
    EXPECT_EQ(message(), QStringLiteral("codesign refused the update: It is not signed."));
    EXPECT_EQ(toolsRun(), QStringList{ofTheImage});
    EXPECT_FALSE(isRequired()) << "anybody could have sent it";
}

TEST_F(UpdaterSignature, that_is_missing_does_not_matter_before_one_was_seen) {
    installWhole({});
    EXPECT_TRUE(isReady());
    EXPECT_FALSE(toolsRun().contains(ofTheImage));
    EXPECT_FALSE(isRequired());
}

TEST_F(UpdaterSignature, that_was_good_once_is_required_from_then_on) {
    letFail(QStringLiteral("attach"), "broken");
    installWhole(signedOffer);
    EXPECT_TRUE(isRequired());
    platform.toolRunner.runs.clear();
    installWhole({});
    EXPECT_EQ(
        message(),
        QStringLiteral("The update server left out the signature of the update. Nothing was installed."));
    EXPECT_TRUE(platform.toolRunner.runs.empty());
}

TEST_F(UpdaterSignature, that_is_no_text_makes_the_feed_one_that_nobody_understands) {
    checkAndFind({.signature = 1});
    EXPECT_EQ(message(), QStringLiteral("Could not reach the update server."));
    checkAndFind({.signature = QJsonValue::Null});
    EXPECT_EQ(updater->state.get().index(), Updater::State(Updater::Available{}).index());
}

} // namespace pavonel::test
