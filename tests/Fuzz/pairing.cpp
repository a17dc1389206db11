#include "Core/Phone.h"
#include "Fuzz/Target.h"
#include "support/FakePlatform.h"

#include <algorithm>

namespace pavonel::fuzz {

namespace {

/// Answers to what is asked next; the first byte tells whether the status is one of success.
void answerNext(test::FakePlatform &platform, const QByteArray &reply) {
    if (platform.web.exchanges.empty())
        return;
    const auto exchange = std::move(platform.web.exchanges.back());
    platform.web.exchanges.clear();
    exchange.answer(HttpResponse{reply.startsWith('!') ? 500 : 200, reply});
    platform.loop.advance(0);
}

bool canStandInAHeader(const QByteArray &text) {
    return std::none_of(text.begin(), text.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
    });
}

} // namespace

/// Replies to "/pair/start" and then to "/pair/status", with a zero byte between them.
void pairing(const QByteArray &input) {
    test::FakePlatform platform;
    Phone phone(platform.web, platform.loop, platform.fakeDefaults,
                QUrl(QStringLiteral("https://pair.example")));
    phone.startPairing();
    for (const QByteArray &reply : input.split('\0').mid(0, 8)) {
        answerNext(platform, reply);
        platform.loop.advance(4);
        for (const auto &exchange : platform.web.exchanges) {
            for (const auto &[name, value] : exchange.request.headers)
                require(canStandInAHeader(value));
        }
    }
    phone.unpair();
    require(!platform.defaults->value(Phone::tokenKey));
}

} // namespace pavonel::fuzz
