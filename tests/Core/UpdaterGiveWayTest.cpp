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
    EXPECT_TRUE(updater->giveWay(Opening::showingSettings));
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
    const QString script =
        QStringLiteral("while kill -0 %1 2>/dev/null; do sleep 0.3; done\nopen \"$0\"\nopen \"$0\"")
            .arg(QCoreApplication::applicationPid());
    ASSERT_EQ(platform.launcher.launches.size(), 1U);
    EXPECT_EQ(platform.launcher.launches[0],
              FakeProcessLauncher::Launch(QStringLiteral("/bin/bash"),
                                          {QStringLiteral("-c"), script, platform.copy.runningBundle}));
    EXPECT_EQ(platform.launcher.searchPaths[0], ProcessLauncher::SearchPath::ownToolsFirst);
}

TEST_F(UpdaterGiveWay, what_a_package_manager_put_there_starts_without_its_settings) {
    EXPECT_TRUE(reopeningScript(1, Opening::silent).endsWith(QStringLiteral("done\nopen \"$0\"")));
}

TEST_F(UpdaterGiveWay, without_a_successor_there_is_nothing_to_give_way_to) {
    EXPECT_FALSE(updater->giveWay(Opening::showingSettings));
    EXPECT_TRUE(platform.launcher.launches.empty());
    EXPECT_TRUE(platform.loop.quits.empty());
}

TEST_F(UpdaterGiveWay, where_nothing_can_be_started_we_stay) {
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    platform.launcher.succeeds = false;
    EXPECT_FALSE(updater->giveWay(Opening::showingSettings));
    EXPECT_TRUE(platform.loop.quits.empty());
}

} // namespace pavonel::test
