#include "Core/Phone.h"

#include "support/FakePlatform.h"

#include <QJsonDocument>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QUrl service(QStringLiteral("https://pair.example"));

class PhoneLink : public ::testing::Test {
protected:
    FakePlatform platform;
    std::optional<Phone> phone;

    PhoneLink() { phone.emplace(platform.web, platform.loop, platform.fakeDefaults, service); }

    void storeToken() { platform.defaults->set(Phone::tokenKey, QStringLiteral("secret")); }
    std::optional<StoredValue> token() const { return platform.defaults->value(Phone::tokenKey); }

    std::vector<FakeHttpClient::Exchange> &sent() { return platform.web.exchanges; }

    /// The answer arrives on another thread in Pavonel, and here before the main thread's next turn.
    void answer(std::size_t exchange, int status, const QByteArray &data) {
        sent().at(exchange).answer(HttpResponse{status, data});
        platform.loop.advance(0);
    }
    void breakOff(std::size_t exchange) {
        sent().at(exchange).answer({});
        platform.loop.advance(0);
    }

    void receiveCode(std::size_t exchange, const QByteArray &code = "123456") {
        answer(exchange, 200, R"({"code":")" + code + R"(","macToken":"token )" + code + R"("})");
    }

    static Phone::State waiting(const char *code) { return Phone::Waiting{QString::fromUtf8(code)}; }
    static Phone::State failed(const char *message) { return Phone::Failed{QString::fromUtf8(message)}; }

    static QByteArray header(const HttpRequest &request, const char *name) {
        for (const auto &[key, value] : request.headers) {
            if (key == name)
                return value;
        }
        return {};
    }
    static std::string line(const HttpRequest &request) {
        return (request.method + ' ' + request.url.toEncoded()).toStdString();
    }
};

} // namespace

TEST_F(PhoneLink, starts_unpaired_without_a_token) {
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Unpaired{}));
}

TEST_F(PhoneLink, names_the_service_and_the_phones_page_that_brings_a_code_along) {
    const auto expect = [this](const char *address, const char *name, const char *page) {
        const Phone other(platform.web, platform.loop, platform.fakeDefaults,
                          QUrl(QString::fromLatin1(address)));
        EXPECT_EQ(other.serviceName(), QLatin1StringView(name)) << address;
        EXPECT_EQ(other.pageFor(QStringLiteral("K7WQ3M")), QLatin1StringView(page)) << address;
        EXPECT_EQ(other.pageFor(QStringLiteral("······")), QString()) << "no code yet";
    };
    expect("https://pair.example.org", "pair.example.org", "https://pair.example.org/#K7WQ3M");
    expect("http://127.0.0.1:8787/", "127.0.0.1:8787", "http://127.0.0.1:8787/#K7WQ3M");
    expect("https://example.org/pair", "example.org", "https://example.org/pair/#K7WQ3M");
    expect("http://me:secret@[::1]:8787", "[::1]:8787", "http://[::1]:8787/#K7WQ3M");
    expect("", "", "");
}

TEST_F(PhoneLink, starts_paired_with_a_token_even_if_no_phone_ever_confirmed_it) {
    storeToken();
    phone.emplace(platform.web, platform.loop, platform.fakeDefaults, service);
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Paired{}));
}

TEST_F(PhoneLink, pairing_shows_the_waiting_layout_at_once_and_asks_for_a_code) {
    phone->startPairing();
    EXPECT_EQ(phone->state.get(), waiting("······"));
    ASSERT_EQ(sent().size(), 1U);
    const HttpRequest &request = sent()[0].request;
    EXPECT_EQ(line(request), "POST https://pair.example/pair/start");
    EXPECT_TRUE(request.headers.isEmpty());
    EXPECT_FALSE(request.body);
    EXPECT_EQ(request.timeout, 20);
}

TEST_F(PhoneLink, a_code_is_shown_its_token_kept_and_the_phone_polled_for) {
    phone->startPairing();
    receiveCode(0);
    EXPECT_EQ(phone->state.get(), waiting("123456"));
    EXPECT_EQ(token(), StoredValue(QStringLiteral("token 123456")));
    platform.loop.advance(1.9);
    EXPECT_EQ(sent().size(), 1U);
    platform.loop.advance(0.1);
    ASSERT_EQ(sent().size(), 2U);
    EXPECT_EQ(line(sent()[1].request), "GET https://pair.example/pair/status");
    EXPECT_EQ(header(sent()[1].request, "Authorization"), "Bearer token 123456");
    EXPECT_FALSE(sent()[1].request.body);
}

TEST_F(PhoneLink, a_code_reply_without_both_texts_fails_and_stores_nothing) {
    for (const char *reply : {"", "[]", "garbage", "{}", R"({"code":"1"})", R"({"macToken":"t"})",
                              R"({"code":123456,"macToken":"t"})", R"({"code":"1","macToken":null})"}) {
        sent().clear();
        phone->startPairing();
        answer(0, 200, reply);
        EXPECT_EQ(phone->state.get(), failed("The server sent something unexpected.")) << reply;
        EXPECT_FALSE(token()) << reply;
    }
}

TEST_F(PhoneLink, a_token_that_would_split_a_header_is_none) {
    for (const char *inJson :
         {"a\\r\\nX-Other: b", "a\\nb", "a\\u0000b", "a\\tb", "a\\u007fb", "a\\u0085b"}) {
        sent().clear();
        phone->startPairing();
        answer(0, 200, QByteArray(R"({"code":"1","macToken":")") + inJson + "\"}");
        EXPECT_EQ(phone->state.get(), failed("The server sent something unexpected.")) << inJson;
        EXPECT_FALSE(token()) << inJson;
    }
}

TEST_F(PhoneLink, a_refused_code_request_names_the_status) {
    phone->startPairing();
    answer(0, 404, "not here");
    EXPECT_EQ(phone->state.get(), failed("The pairing service said no (404)."));
    phone->startPairing();
    answer(1, 403, R"({"code":"1","macToken":"t"})");
    EXPECT_EQ(phone->state.get(), failed("The pairing service said no (403)."));
    phone->startPairing();
    answer(2, 301, "");
    EXPECT_EQ(phone->state.get(), failed("The pairing service said no (301)."));
}

TEST_F(PhoneLink, a_code_request_that_gets_through_to_nobody_says_so) {
    phone->startPairing();
    breakOff(0);
    EXPECT_EQ(phone->state.get(), failed("Could not reach the pairing service."));
}

TEST_F(PhoneLink, a_confirmed_code_pairs_and_ends_the_polling) {
    phone->startPairing();
    receiveCode(0);
    platform.loop.advance(2);
    answer(1, 200, R"({"paired":true})");
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Paired{}));
    EXPECT_EQ(token(), StoredValue(QStringLiteral("token 123456")));
    platform.loop.advance(2000);
    EXPECT_EQ(sent().size(), 2U);
}

TEST_F(PhoneLink, every_other_poll_reply_is_ignored) {
    phone->startPairing();
    receiveCode(0);
    const std::pair<int, const char *> replies[] = {
        {200, R"({"paired":false})"},  {200, "{}"}, {200, R"({"paired":1})"},
        {200, R"({"paired":"true"})"}, {200, ""},   {200, "[true]"},
        {403, R"({"paired":true})"},   {500, ""}};
    for (const auto &[status, data] : replies) {
        platform.loop.advance(2);
        answer(sent().size() - 1, status, data);
        EXPECT_EQ(phone->state.get(), waiting("123456")) << data;
    }
    platform.loop.advance(2);
    breakOff(sent().size() - 1);
    EXPECT_EQ(phone->state.get(), waiting("123456"));
}

TEST_F(PhoneLink, slow_polls_overlap_and_each_counts_on_its_own) {
    phone->startPairing();
    receiveCode(0);
    platform.loop.advance(6);
    ASSERT_EQ(sent().size(), 4U);
    answer(2, 200, R"({"paired":true})");
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Paired{}));
    answer(1, 200, R"({"paired":false})");
    answer(3, 500, "");
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Paired{}));
}

TEST_F(PhoneLink, a_code_expires_after_fifteen_minutes) {
    phone->startPairing();
    receiveCode(0);
    platform.loop.advance(900);
    EXPECT_EQ(phone->state.get(), waiting("123456")) << "not later than the deadline yet";
    platform.loop.advance(2);
    EXPECT_EQ(phone->state.get(), failed("That code expired. Try again."));
    EXPECT_FALSE(token());
    const auto requests = sent().size();
    platform.loop.advance(100);
    EXPECT_EQ(sent().size(), requests);
}

TEST_F(PhoneLink, pairing_again_restarts_the_deadline_when_the_new_code_arrives) {
    phone->startPairing();
    receiveCode(0);
    platform.loop.advance(890);
    const auto second = sent().size();
    phone->startPairing();
    EXPECT_EQ(phone->state.get(), waiting("······"));
    receiveCode(second, "222222");
    platform.loop.advance(100);
    EXPECT_EQ(phone->state.get(), waiting("222222")) << "the old timer never fires again";
    EXPECT_EQ(sent().size(), second + 1 + 50) << "one timer polls, not two";
    platform.loop.advance(802);
    EXPECT_EQ(phone->state.get(), failed("That code expired. Try again."));
}

TEST_F(PhoneLink, a_late_code_of_an_earlier_pairing_is_dropped) {
    phone->startPairing();
    phone->startPairing();
    receiveCode(1, "222222");
    receiveCode(0, "111111");
    EXPECT_EQ(phone->state.get(), waiting("222222"));
    EXPECT_EQ(token(), StoredValue(QStringLiteral("token 222222")));
}

TEST_F(PhoneLink, replies_that_come_after_unpairing_change_nothing) {
    phone->startPairing();
    phone->unpair();
    receiveCode(0);
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Unpaired{}));
    EXPECT_FALSE(token());

    phone->startPairing();
    receiveCode(sent().size() - 1);
    platform.loop.advance(2);
    const auto poll = sent().size() - 1;
    phone->unpair();
    answer(poll, 200, R"({"paired":true})");
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Unpaired{}));
}

TEST_F(PhoneLink, unpairing_forgets_at_once_and_tells_the_service_with_the_token) {
    storeToken();
    phone.emplace(platform.web, platform.loop, platform.fakeDefaults, service);
    phone->unpair();
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Unpaired{}));
    EXPECT_FALSE(token());
    ASSERT_EQ(sent().size(), 1U);
    EXPECT_EQ(line(sent()[0].request), "DELETE https://pair.example/pair");
    EXPECT_EQ(header(sent()[0].request, "Authorization"), "Bearer secret");
    EXPECT_FALSE(sent()[0].request.body);
    breakOff(0);
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Unpaired{})) << "a failed unpair forgets all the same";
}

TEST_F(PhoneLink, unpairing_without_a_token_sends_no_credentials) {
    phone->unpair();
    ASSERT_EQ(sent().size(), 1U);
    EXPECT_EQ(header(sent()[0].request, "Authorization"), QByteArray());
}

TEST_F(PhoneLink, unpairing_ends_the_polling) {
    phone->startPairing();
    receiveCode(0);
    phone->unpair();
    const auto requests = sent().size();
    platform.loop.advance(1000);
    EXPECT_EQ(sent().size(), requests);
}

TEST_F(PhoneLink, a_starting_break_is_told_with_exactly_three_members) {
    storeToken();
    phone->breakStarted(BreakKind::planned, QStringLiteral("Lunch \"out\" — ☀"), 299.9);
    ASSERT_EQ(sent().size(), 1U);
    const HttpRequest &request = sent()[0].request;
    EXPECT_EQ(line(request), "POST https://pair.example/break");
    EXPECT_EQ(header(request, "Authorization"), "Bearer secret");
    EXPECT_EQ(header(request, "Content-Type"), "application/json");
    EXPECT_EQ(QJsonDocument::fromJson(request.body.value()).object(),
              QJsonObject({{QStringLiteral("kind"), QStringLiteral("planned")},
                           {QStringLiteral("title"), QStringLiteral("Lunch \"out\" — ☀")},
                           {QStringLiteral("seconds"), 299}}));
    EXPECT_TRUE(request.body->contains("\"seconds\":299}") || request.body->contains("\"seconds\":299,"));
}

TEST_F(PhoneLink, kinds_go_by_their_names) {
    storeToken();
    const std::pair<BreakKind, const char *> kinds[] = {
        {BreakKind::micro, "micro"}, {BreakKind::long_, "long"}, {BreakKind::planned, "planned"}};
    for (const auto &[kind, name] : kinds) {
        phone->breakStarted(kind, {}, 20);
        const auto body = QJsonDocument::fromJson(sent().back().request.body.value()).object();
        EXPECT_EQ(body.value(u"kind").toString().toStdString(), name);
    }
}

TEST_F(PhoneLink, an_ending_break_is_told_without_a_body) {
    storeToken();
    phone->breakEnded();
    ASSERT_EQ(sent().size(), 1U);
    EXPECT_EQ(line(sent()[0].request), "DELETE https://pair.example/break");
    EXPECT_EQ(header(sent()[0].request, "Authorization"), "Bearer secret");
    EXPECT_FALSE(sent()[0].request.body);
}

TEST_F(PhoneLink, without_a_token_no_break_is_told) {
    phone->breakStarted(BreakKind::micro, {}, 20);
    phone->breakEnded();
    EXPECT_TRUE(sent().empty());
}

TEST_F(PhoneLink, breaks_are_told_by_the_token_whatever_the_state) {
    storeToken();
    phone->startPairing();
    breakOff(0);
    ASSERT_EQ(phone->state.get(), failed("Could not reach the pairing service."));
    phone->breakStarted(BreakKind::micro, {}, 20);
    phone->breakEnded();
    EXPECT_EQ(sent().size(), 3U);
}

TEST_F(PhoneLink, a_relay_that_fails_changes_nothing_and_is_not_tried_again) {
    storeToken();
    phone.emplace(platform.web, platform.loop, platform.fakeDefaults, service);
    phone->breakStarted(BreakKind::micro, {}, 20);
    breakOff(0);
    phone->breakEnded();
    answer(1, 500, "");
    platform.loop.advance(1000);
    EXPECT_EQ(sent().size(), 2U);
    EXPECT_EQ(phone->state.get(), Phone::State(Phone::Paired{}));
}

TEST_F(PhoneLink, paths_are_appended_to_the_base) {
    const std::pair<const char *, const char *> bases[] = {
        {"https://pair.example", "https://pair.example/break"},
        {"https://pair.example/", "https://pair.example/break"},
        {"https://pair.example:8443/api/v2", "https://pair.example:8443/api/v2/break"},
        {"https://pair.example/api%20one/", "https://pair.example/api%20one/break"},
    };
    storeToken();
    for (const auto &[base, expected] : bases) {
        phone.emplace(platform.web, platform.loop, platform.fakeDefaults, QUrl(QString::fromUtf8(base)));
        phone->breakEnded();
        EXPECT_EQ(sent().back().request.url.toEncoded().toStdString(), expected);
    }
}

TEST_F(PhoneLink, replies_that_outlive_the_phone_do_nothing) {
    phone->startPairing();
    phone.reset();
    receiveCode(0);
    EXPECT_FALSE(token());
}

TEST_F(PhoneLink, changes_of_state_are_observable) {
    int notices = 0;
    const auto observing = phone->observe([&] { ++notices; });
    phone->startPairing();
    receiveCode(0);
    EXPECT_EQ(notices, 2);
}

TEST(PhoneLinkDeathTest, a_break_of_no_finite_length_is_a_programming_error) {
    FakePlatform platform;
    platform.defaults->set(Phone::tokenKey, QStringLiteral("secret"));
    Phone phone(platform.web, platform.loop, platform.fakeDefaults, service);
    EXPECT_DEATH(phone.breakStarted(BreakKind::micro, {}, std::numeric_limits<double>::quiet_NaN()), "");
}

TEST(PhoneServiceAddress, the_environment_has_the_last_word) {
    qunsetenv("PAVONEL_PAIR_HOST");
    EXPECT_EQ(Phone::serviceAddress().value().scheme(), QStringLiteral("https"));
    qputenv("PAVONEL_PAIR_HOST", "http://127.0.0.1:8080/base");
    EXPECT_EQ(Phone::serviceAddress(), QUrl(QStringLiteral("http://127.0.0.1:8080/base")));
    for (const char *noUrl : {"", "http://[", "ht tp://x", "http://host:port"}) {
        qputenv("PAVONEL_PAIR_HOST", noUrl);
        EXPECT_FALSE(Phone::serviceAddress()) << noUrl;
    }
    qunsetenv("PAVONEL_PAIR_HOST");
}

} // namespace pavonel::test
