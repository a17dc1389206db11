#include "Core/Updater.h"

#include "support/FakePlatform.h"
#include "support/UpdaterStates.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QUrl feedUrl(QStringLiteral("https://example.org/updates.json"));
constexpr Seconds hour = 3600;

QByteArray feed(const QByteArray &version, const QByteArray &more = {}) {
    return R"({"version":")" + version +
           R"(","url":"https://example.org/Pavonel.dmg","sha256":"00","notes":"Calmer.")" + more + "}";
}

/// Version 1.2.0 runs.
class UpdaterCheck : public ::testing::Test {
protected:
    using CheckKind = Updater::CheckKind;

    FakePlatform platform;
    std::optional<Updater> updater;

    UpdaterCheck() { start(); }

    void start() { updater.emplace(platform, feedUrl); }

    std::vector<FakeHttpClient::Exchange> &sent() { return platform.web.exchanges; }

    void answer(std::size_t exchange, const QByteArray &data, int status = 200) {
        sent().at(exchange).answer(HttpResponse{status, data});
        platform.loop.advance(0);
    }
    void breakOff(std::size_t exchange) {
        sent().at(exchange).answer({});
        platform.loop.advance(0);
    }

    /// What an interactive check comes to with this reply.
    Updater::State outcomeOf(const QByteArray &data, CheckKind kind = CheckKind::interactive) {
        updater->check(kind);
        answer(sent().size() - 1, data);
        return updater->state;
    }

    void storeLastCheck(Seconds ago) {
        platform.defaults->set(Updater::lastCheckKey, platform.loop.now() + -ago);
        start();
    }

    const Updater::State unreachable = Updater::Failed{QStringLiteral("Could not reach the update server.")};
    const Updater::State upToDate = Updater::UpToDate{};
    const Updater::State idle = Updater::Idle{};
    const Updater::State checking = Updater::Checking{};

    static Updater::State available(const char *version) {
        return Updater::Available{QString::fromUtf8(version), QStringLiteral("Calmer.")};
    }
};

} // namespace

TEST_F(UpdaterCheck, starts_idle_and_asks_nobody) {
    EXPECT_EQ(updater->state.get(), idle);
    EXPECT_EQ(updater->lastCheck.get(), std::nullopt);
    EXPECT_TRUE(sent().empty());
}

TEST_F(UpdaterCheck, the_feed_is_asked_for_with_one_plain_request) {
    updater->check(CheckKind::interactive);
    ASSERT_EQ(sent().size(), 1U);
    const HttpRequest &request = sent()[0].request;
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.url, feedUrl);
    EXPECT_EQ(request.timeout, 60);
    EXPECT_FALSE(request.body);
    EXPECT_EQ(updater->state.get(), checking);
}

TEST_F(UpdaterCheck, a_newer_release_is_offered_with_its_notes) {
    EXPECT_EQ(outcomeOf(feed("1.10")), available("1.10"));
    EXPECT_EQ(outcomeOf(feed("1.2.1"), CheckKind::silent), available("1.2.1"));
}

TEST_F(UpdaterCheck, the_same_version_with_fewer_numbers_is_not_newer) {
    EXPECT_EQ(outcomeOf(feed("1.2")), upToDate);
}

TEST_F(UpdaterCheck, what_is_no_number_in_a_version_counts_as_0) {
    EXPECT_EQ(outcomeOf(feed("1.2.0-beta")), upToDate);
}

TEST_F(UpdaterCheck, a_silent_check_that_finds_nothing_newer_says_nothing) {
    EXPECT_EQ(outcomeOf(feed("1.2.0"), CheckKind::silent), idle);
}

TEST_F(UpdaterCheck, without_a_known_version_of_its_own_any_number_is_newer) {
    platform.copy.runningVersion.reset();
    EXPECT_EQ(updater->currentVersion(), QStringLiteral("0"));
    EXPECT_EQ(outcomeOf(feed("0.0.1")), available("0.0.1"));
    EXPECT_EQ(outcomeOf(feed("0.0")), upToDate);
}

TEST_F(UpdaterCheck, the_current_version_is_that_of_the_running_program) {
    EXPECT_EQ(updater->currentVersion(), QStringLiteral("1.2.0"));
}

TEST_F(UpdaterCheck, a_feed_that_lacks_a_text_or_has_another_type_for_it_cannot_be_understood) {
    for (const char *data : {
             R"({"version":"2","url":"https://e.org/p","sha256":"00"})",
             R"({"version":"2","url":"https://e.org/p","notes":""})",
             R"({"version":"2","sha256":"00","notes":""})",
             R"({"url":"https://e.org/p","sha256":"00","notes":""})",
             R"({"version":2,"url":"https://e.org/p","sha256":"00","notes":""})",
             R"({"version":"2","url":null,"sha256":"00","notes":""})",
             R"({"version":"2","url":"https://e.org/p","sha256":["00"],"notes":""})",
             R"({"version":"2","url":"https://e.org/p","sha256":"00","notes":{}})",
             R"({"version":"2","url":"https://e.org/p","sha256":"00","notes":"","minimumSystemVersion":14})",
             R"([{"version":"2","url":"https://e.org/p","sha256":"00","notes":""}])",
             "<html>Not Found</html>",
             "",
             "null",
             "\xff\xfe",
         })
        EXPECT_EQ(outcomeOf(data), unreachable) << data;
}

TEST_F(UpdaterCheck, a_minimum_system_version_decides_nothing) {
    for (const char *minimum : {R"("99.0")", R"("rubbish")", "null"})
        EXPECT_EQ(outcomeOf(feed("2", QByteArray(R"(,"minimumSystemVersion":)") + minimum)), available("2"));
    EXPECT_EQ(decodeRelease(feed("2", R"(,"minimumSystemVersion":"99.0")"))->minimumSystemVersion,
              QStringLiteral("99.0"));
}

TEST_F(UpdaterCheck, unknown_keys_are_ignored) {
    EXPECT_EQ(outcomeOf(feed("2", R"(,"channel":{"beta":[1]})")), available("2"));
}

TEST_F(UpdaterCheck, brackets_nested_without_end_are_no_feed) {
    EXPECT_EQ(outcomeOf(QByteArray(10'000'000, '[')), unreachable);
    EXPECT_EQ(outcomeOf(QByteArray(10'000'000, '{')), unreachable);
    QByteArray objects;
    for (int i = 0; i < 100'000; ++i)
        objects += R"({"a":)";
    EXPECT_EQ(outcomeOf(objects), unreachable);
}

TEST_F(UpdaterCheck, the_status_of_the_reply_does_not_matter) {
    updater->check(CheckKind::interactive);
    answer(0, feed("2"), 404);
    EXPECT_EQ(updater->state.get(), available("2"));
}

TEST_F(UpdaterCheck, no_reply_is_told_after_an_interactive_check_and_not_after_a_silent_one) {
    updater->check(CheckKind::interactive);
    breakOff(0);
    EXPECT_EQ(updater->state.get(), unreachable);
    updater->check(CheckKind::silent);
    EXPECT_EQ(updater->state.get(), checking);
    breakOff(1);
    EXPECT_EQ(updater->state.get(), idle);
    EXPECT_EQ(outcomeOf("rubbish", CheckKind::silent), idle);
}

TEST_F(UpdaterCheck, every_reply_counts_as_a_check_and_is_remembered) {
    updater->check(CheckKind::silent);
    platform.loop.advance(5);
    EXPECT_EQ(updater->lastCheck.get(), std::nullopt);
    breakOff(0);
    const Instant then = platform.loop.now();
    EXPECT_EQ(updater->lastCheck.get(), then);
    EXPECT_EQ(platform.defaults->value(Updater::lastCheckKey), StoredValue(then));
    platform.loop.advance(100);
    outcomeOf(feed("1"));
    EXPECT_EQ(updater->lastCheck.get(), then + 100);
    start();
    EXPECT_EQ(updater->lastCheck.get(), then + 100);
}

TEST_F(UpdaterCheck, a_stored_check_that_is_no_date_is_none) {
    platform.defaults->set(Updater::lastCheckKey, QStringLiteral("yesterday"));
    start();
    EXPECT_EQ(updater->lastCheck.get(), std::nullopt);
}

TEST_F(UpdaterCheck, a_check_while_an_offer_is_shown_goes_back_through_checking) {
    outcomeOf(feed("2"));
    updater->check(CheckKind::interactive);
    EXPECT_EQ(updater->state.get(), checking);
    answer(1, feed("3"));
    EXPECT_EQ(updater->state.get(), available("3"));
}

TEST_F(UpdaterCheck, every_state_but_downloading_gives_way_to_a_check) {
    for (const Updater::State &state :
         {available("2"), unreachable, idle, checking, upToDate, Updater::State(Updater::ReadyToRestart{})}) {
        updater->state = state;
        updater->check(CheckKind::silent);
        EXPECT_EQ(updater->state.get(), checking) << state.index();
    }
    EXPECT_EQ(sent().size(), 6U);
    updater->state = Updater::Downloading{0};
    updater->check(CheckKind::interactive);
    EXPECT_EQ(updater->state.get(), Updater::State(Updater::Downloading{0}));
    EXPECT_EQ(sent().size(), 6U);
}

TEST_F(UpdaterCheck, a_check_during_a_check_starts_another) {
    updater->check(CheckKind::silent);
    updater->check(CheckKind::interactive);
    EXPECT_EQ(sent().size(), 2U);
    answer(1, feed("1"));
    EXPECT_EQ(updater->state.get(), upToDate);
}

TEST_F(UpdaterCheck, the_reply_changes_nothing_before_the_main_thread_has_it) {
    updater->check(CheckKind::interactive);
    sent()[0].answer(HttpResponse{200, feed("2")});
    EXPECT_EQ(updater->state.get(), checking);
    EXPECT_EQ(updater->lastCheck.get(), std::nullopt);
    platform.loop.advance(0);
    EXPECT_EQ(updater->state.get(), available("2"));
}

TEST_F(UpdaterCheck, a_reply_to_an_updater_that_is_gone_is_dropped) {
    updater->check(CheckKind::interactive);
    updater.reset();
    answer(0, feed("2"));
    EXPECT_FALSE(platform.defaults->value(Updater::lastCheckKey));
}

TEST_F(UpdaterCheck, whoever_watches_learns_of_each_change) {
    int changes = 0;
    const auto observation = updater->observe([&] { ++changes; });
    updater->check(CheckKind::interactive);
    EXPECT_EQ(changes, 1);
    answer(0, feed("2"));
    EXPECT_EQ(changes, 3) << "the date and the state";
}

TEST_F(UpdaterCheck, in_the_background_it_checks_when_nothing_was_ever_stored) {
    EXPECT_TRUE(updater->automatic());
    updater->checkInBackground();
    ASSERT_EQ(sent().size(), 1U);
    breakOff(0);
    EXPECT_EQ(updater->state.get(), idle) << "silently";
}

TEST_F(UpdaterCheck, in_the_background_it_does_not_check_when_that_is_switched_off) {
    platform.defaults->set(Updater::automaticKey, false);
    EXPECT_FALSE(updater->automatic());
    updater->checkInBackground();
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(updater->state.get(), idle);
}

TEST_F(UpdaterCheck, a_switch_that_is_stored_as_something_else_is_on) {
    for (const StoredValue &value : {StoredValue(qint64{0}), StoredValue(QStringLiteral("false"))}) {
        platform.defaults->set(Updater::automaticKey, value);
        EXPECT_TRUE(updater->automatic());
    }
}

TEST_F(UpdaterCheck, in_the_background_it_checks_once_a_day) {
    storeLastCheck(23 * hour);
    updater->checkInBackground();
    EXPECT_TRUE(sent().empty());
    storeLastCheck(24 * hour - 1);
    updater->checkInBackground();
    EXPECT_TRUE(sent().empty());
    storeLastCheck(24 * hour);
    updater->checkInBackground();
    EXPECT_EQ(sent().size(), 1U);
}

TEST_F(UpdaterCheck, a_last_check_in_the_future_keeps_the_background_check_away) {
    storeLastCheck(-1000 * 24 * hour);
    updater->checkInBackground();
    EXPECT_TRUE(sent().empty());
}

TEST(UpdaterVersions, are_compared_number_by_number) {
    const struct {
        const char *a;
        const char *b;
        bool isNewer;
    } table[] = {
        {"1.10", "1.9", true},
        {"1.9", "1.10", false},
        {"2.0.0", "2", false},
        {"2", "2.0.0", false},
        {"2.0.1", "2", true},
        {"2", "2.0.1", false},
        {"1..3", "1.2", true},
        {".1.2.", "1.2", false},
        {"1.3b", "1.0", false},
        {"1.rc1", "1", false},
        {"1.1", "1.rc1", true},
        {"", "", false},
        {"0.1", "", true},
        {"", "0.1", false},
        {"...", "0", false},
        {"1.+3", "1.2", true},
        {"1", "1.-1", true},
        {"1.+-3", "1", false},
        {" 2", "1", false},
        {"2 ", "1", false},
        {"0x10", "1", false},
        {"9223372036854775807", "9223372036854775806", true},
        {"99999999999999999999", "1", false},
        {"\xd9\xa3", "1", false},
        {"20261120.1", "20261119.9", true},
    };
    for (const auto &row : table) {
        EXPECT_EQ(Updater::isNewer(QString::fromUtf8(row.a), QString::fromUtf8(row.b)), row.isNewer)
            << row.a << " and " << row.b;
    }
}

namespace {

struct UpdaterFeed : ::testing::Test {
    static std::optional<QUrl> addressWith(const QByteArray &value) {
        qputenv("PAVONEL_UPDATE_FEED", value);
        const auto address = Updater::feedAddress();
        qunsetenv("PAVONEL_UPDATE_FEED");
        return address;
    }
};

} // namespace

TEST_F(UpdaterFeed, is_the_products_own_over_https_unless_the_environment_names_another) {
    EXPECT_EQ(Updater::feedAddress(), QUrl(QStringLiteral("https://pavonel.org/updates.json")));
    EXPECT_EQ(addressWith("http://127.0.0.1:8080/x?y=1"),
              QUrl(QStringLiteral("http://127.0.0.1:8080/x?y=1")));
}

TEST_F(UpdaterFeed, is_none_where_the_environment_names_no_address) {
    EXPECT_EQ(addressWith("http://["), std::nullopt);
    EXPECT_EQ(addressWith("http://a b/"), std::nullopt);
    EXPECT_EQ(addressWith(""), std::nullopt);
}

} // namespace pavonel::test
