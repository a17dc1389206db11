#include "support/UpdateFixture.h"

#include <QCoreApplication>

namespace pavonel::test {

namespace {

/// Version 1.2.0 runs while another process works on what lies on the disk.
using UpdaterGiveWay = UpdateFixture;

} // namespace

TEST_F(UpdaterGiveWay, another_version_in_our_place_starts_once_we_have_ended) {
    platform.copy.runningBundle = QStringLiteral("/home/a \"b\"/Pavonel.app");
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    EXPECT_TRUE(updater->giveWay());
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
    const QString script = QStringLiteral("while kill -0 %1 2>/dev/null; do sleep 0.3; done\nopen \"$0\"")
                               .arg(QCoreApplication::applicationPid());
    ASSERT_EQ(platform.launcher.launches.size(), 1U);
    EXPECT_EQ(platform.launcher.launches[0],
              FakeProcessLauncher::Launch(QStringLiteral("/bin/bash"),
                                          {QStringLiteral("-c"), script, platform.copy.runningBundle}));
    EXPECT_EQ(platform.launcher.searchPaths[0], ProcessLauncher::SearchPath::ownToolsFirst);
}

TEST_F(UpdaterGiveWay, the_same_version_or_none_that_is_told_is_nothing_to_give_way_to) {
    EXPECT_FALSE(updater->giveWay());
    platform.copy.versionInPlace.reset();
    EXPECT_FALSE(updater->giveWay());
    EXPECT_TRUE(platform.launcher.launches.empty());
    EXPECT_TRUE(platform.loop.quits.empty());
}

TEST_F(UpdaterGiveWay, where_nothing_can_be_started_we_stay) {
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    platform.launcher.succeeds = false;
    EXPECT_FALSE(updater->giveWay());
    EXPECT_TRUE(platform.loop.quits.empty());
}

} // namespace pavonel::test
