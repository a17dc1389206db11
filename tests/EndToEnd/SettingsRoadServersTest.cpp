#include "EndToEnd/SettingsRoad.h"
#include "support/HttpServer.h"

#include <QFile>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// Refuses the first code, and gives others. The phone is paired once somebody says that the code was typed.
class PairingService {
public:
    void operator()(const HttpServer::Request &request, QTcpSocket &connection) {
        reply(request.line())(request, connection);
    }

private:
    HttpServer::Answer reply(const QByteArray &line) {
        if (line.startsWith("POST /pair/start "))
            return start();
        if (line.startsWith("GET /pair/status "))
            return HttpServer::respond(200, typed_ ? R"({"paired": true})" : R"({"paired": false})");
        if (line.startsWith("POST /typed "))
            typed_ = true;
        return HttpServer::respond(200, "{}");
    }

    HttpServer::Answer start() {
        typed_ = false;
        if (++codes_ == 1)
            return HttpServer::respond(503, "later");
        const QByteArray number = QByteArray::number(codes_ - 1);
        return HttpServer::respond(200, R"({"code": ")" + number.repeated(6) + R"(", "macToken": "secret )" +
                                            number + R"("})");
    }

    int codes_ = 0;
    bool typed_ = false;
};

/// Answers in turn with the old, the old, an error page, and the new.
HttpServer::Answer updateFeed() {
    return [asked = 0](const HttpServer::Request &request, QTcpSocket &connection) mutable {
        const QByteArray feed = R"({"url": "http://127.0.0.1:1/", "sha256": "00",
                                    "notes": "Feathers of a new colour.", "version": ")";
        const QByteArray answers[] = {feed + R"(0.0.1"})", feed + R"(0.0.1"})", "<h1>Bad gateway</h1>",
                                      feed + R"(9.8.7"})"};
        HttpServer::respond(200, answers[std::min(asked++, 3)])(request, connection);
    };
}

} // namespace

TEST_F(SettingsRoad, a_phone_is_paired_with_a_local_service_from_outside) {
    const HttpServer service{PairingService()};
    desktop.environment().insert(u"PAVONEL_PAIR_HOST"_s, service.url().toString());
    start();
    walk(u"phone.py"_s, {service.url().authority()});
    expectOnlyStored(
        {{u"didOnboard"_s, true}, {u"phonePairToken"_s, u"secret 3"_s}, {u"phonePageSeen"_s, true}});
    QByteArrayList gone;
    for (const HttpServer::Request &request : service.requests()) {
        if (request.line().startsWith("DELETE /pair "))
            gone.append(request.header("Authorization"));
    }
    EXPECT_EQ(gone, QByteArrayList({"Bearer secret 1", "Bearer secret 2"}));
}

TEST_F(SettingsRoad, the_advanced_page_is_gone_through_with_a_local_update_feed_from_outside) {
    const HttpServer feed(updateFeed());
    desktop.environment().insert(u"PAVONEL_UPDATE_FEED"_s, feed.url("/updates.json").toString());
    start();
    walk(u"advanced.py"_s, {QStringLiteral(PAVONEL_VERSION)});
    expectStored({{u"autoUpdate"_s, false},
                  {u"launchAtLogin"_s, false},
                  {u"hotKeysEnabled"_s, false},
                  {u"onBreakStartScript"_s, u"touch started; echo 1"_s},
                  {u"onBreakEndScript"_s, u"shortcut:Lights „an“"_s}});
    EXPECT_EQ(feed.requests().size(), 4U);
    EXPECT_TRUE(stored(u"lastUpdateCheck"_s).isObject());
    EXPECT_FALSE(QFile::exists(desktop.environment().value(u"XDG_CONFIG_HOME"_s) +
                               u"/autostart/org.pavonel.Pavonel.desktop"_s));
}

} // namespace pavonel::test
