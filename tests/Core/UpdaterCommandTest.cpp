#include "Core/UpdaterCommand.h"

#include "support/FakePlatform.h"
#include "support/UpdaterStates.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr char newer[] = R"({"version":"1.3","url":"https://example.org/p.dmg","sha256":"00","notes":""})";
constexpr char same[] = R"({"version":"1.2","url":"https://example.org/p.dmg","sha256":"00","notes":""})";

/// Version 1.2.0 runs, asked to update from the command line.
struct UpdateNow : ::testing::Test {
    QTemporaryDir folder;
    FakePlatform platform;
    Updater updater{platform, QUrl(QStringLiteral("https://example.org/updates.json"))};
    QStringList lines;
    UpdaterCommand command{platform.loop, updater, [this](const QString &line) { lines.append(line); }};

    UpdateNow() {
        platform.copy.temporary = folder.path();
        command.start();
    }

    void feedSays(const QByteArray &feed) {
        platform.web.exchanges.at(0).answer(HttpResponse{200, feed});
        poll();
    }
    void poll() { platform.loop.advance(0.5); }

    void expect(const QStringList &further) const {
        EXPECT_EQ(lines, QStringList(QStringLiteral("current version: 1.2.0")) + further);
    }
    void expectNoEnd() const { EXPECT_TRUE(platform.loop.quits.empty()); }
    void expectEnd(int status) const { EXPECT_EQ(platform.loop.quits, std::vector<int>{status}); }

    const QString installing = QStringLiteral("available: 1.3 — installing");
    const QString staged = QStringLiteral("verified and staged; replacing on exit");
    const QString timedOut = QStringLiteral("timed out");
};

} // namespace

TEST_F(UpdateNow, tells_the_running_version_and_checks_as_if_asked_by_the_user) {
    expect({});
    EXPECT_EQ(platform.web.exchanges.size(), 1U);
    EXPECT_EQ(updater.state.get(), Updater::State(Updater::Checking{}));
}

TEST_F(UpdateNow, ends_well_when_there_is_nothing_newer) {
    feedSays(same);
    expect({QStringLiteral("up to date")});
    expectEnd(0);
    platform.loop.advance(1000);
    expect({QStringLiteral("up to date")});
    expectEnd(0);
}

TEST_F(UpdateNow, without_a_network_fails_with_the_message) {
    platform.web.exchanges.at(0).answer({});
    poll();
    expect({QStringLiteral("failed: Could not reach the update server.")});
    expectEnd(1);
}

TEST_F(UpdateNow, with_a_feed_that_never_answers_times_out_after_241_polls) {
    for (int polls = 1; polls < 241; ++polls)
        poll();
    expect({});
    expectNoEnd();
    poll();
    expect({timedOut});
    expectEnd(1);
    platform.loop.advance(1000);
    expect({timedOut});
    expectEnd(1);
}

TEST_F(UpdateNow, installs_what_is_newer_and_waits) {
    feedSays(newer);
    expect({installing});
    EXPECT_EQ(platform.web.downloads.size(), 1U);
    EXPECT_EQ(updater.state.get(), Updater::State(Updater::Downloading{0}));
    platform.loop.advance(60);
    expect({installing});
    expectNoEnd();
}

TEST_F(UpdateNow, a_download_that_never_ends_times_out_too) {
    feedSays(newer);
    platform.loop.advance(200);
    expect({installing, timedOut});
    expectEnd(1);
}

TEST_F(UpdateNow, an_install_that_fails_ends_with_its_message) {
    feedSays(newer);
    platform.web.downloads.at(0).answer({});
    poll();
    expect({installing, QStringLiteral("failed: The download did not finish.")});
    expectEnd(1);
}

TEST_F(UpdateNow, leaves_the_end_to_the_updater_once_the_new_version_is_staged) {
    feedSays(newer);
    updater.state = Updater::ReadyToRestart{};
    platform.loop.advance(1000);
    expect({installing, staged});
    expectNoEnd();
}

TEST_F(UpdateNow, when_the_handing_over_fails_after_that_the_program_starts_as_ever) {
    feedSays(newer);
    updater.state = Updater::ReadyToRestart{};
    poll();
    EXPECT_FALSE(command.isToStart());
    updater.state = Updater::Failed{QStringLiteral("The disk is full.")};
    expect({installing, staged});
    expectEnd(0);
    EXPECT_TRUE(command.isToStart());
}

TEST_F(UpdateNow, a_handing_over_that_failed_before_the_staging_was_told_is_a_failure) {
    feedSays(newer);
    updater.state = Updater::ReadyToRestart{};
    updater.state = Updater::Failed{QStringLiteral("The disk is full.")};
    poll();
    expect({installing, QStringLiteral("failed: The disk is full.")});
    expectEnd(1);
    EXPECT_FALSE(command.isToStart());
}

TEST_F(UpdateNow, tells_of_the_staging_even_when_the_end_comes_before_the_next_look) {
    feedSays(newer);
    updater.state = Updater::ReadyToRestart{};
    command.finish();
    expect({installing, staged});
}

TEST_F(UpdateNow, tells_of_the_staging_once) {
    feedSays(newer);
    updater.state = Updater::ReadyToRestart{};
    poll();
    command.finish();
    expect({installing, staged});
}

TEST_F(UpdateNow, an_offer_without_an_address_is_tried_until_time_is_up) {
    feedSays(R"({"version":"1.3","url":"http://[","sha256":"00","notes":""})");
    platform.loop.advance(200);
    EXPECT_EQ(lines.count(installing), 241);
    EXPECT_EQ(lines.last(), timedOut);
    EXPECT_TRUE(platform.web.downloads.empty());
    expectEnd(1);
}

TEST_F(UpdateNow, a_version_cannot_pass_for_a_line_of_its_own) {
    feedSays(R"({"version":"2.\nup to date\r\nfailed: ","url":"https://e.org","sha256":"","notes":""})");
    EXPECT_EQ(lines.last(), QStringLiteral("available: 2. up to date  failed:  — installing"));
}

TEST_F(UpdateNow, gives_a_terminal_nothing_to_obey) {
    feedSays("{\"version\":\"2.\\u001b[2J\\u0007\\u009b\",\"url\":\"https://e.org\",\"sha256\":\"\","
             "\"notes\":\"\"}");
    EXPECT_EQ(lines.last(), QStringLiteral("available: 2. [2J   — installing"));
}

} // namespace pavonel::test
