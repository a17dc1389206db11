#include "Service.h"

#include "Log.h"
#include "Requests.h"
#include "Secrets.h"
#include "WebFiles.h"

#include <algorithm>
#include <boost/asio/steady_timer.hpp>

namespace relay {

using nlohmann::json;

namespace {

constexpr double burst = 5;                  // seconds of the rate, at once
constexpr long phoneLife = 400L * 24 * 3600; // the longest that browsers keep a cookie

Response plain(http::status status, std::string text, const char *type = "application/json") {
    Response response{status, 11};
    response.set(http::field::content_type, type);
    response.body() = std::move(text);
    return response;
}

Response error(http::status status, const char *sentence) {
    return plain(status, json{{"error", sentence}}.dump());
}

Response noToken() {
    Response response = error(http::status::unauthorized, "unknown token");
    response.set(http::field::www_authenticate, "Bearer");
    return response;
}

Response tooMany(const char *seconds) {
    Response response = error(http::status::too_many_requests, "too many requests");
    response.set(http::field::retry_after, seconds);
    return response;
}

std::string_view pathOf(const Request &request) {
    const std::string_view target = request.target();
    return target.substr(0, target.find('?'));
}

bool isJson(const Request &request) {
    return request[http::field::content_type].starts_with("application/json");
}

const char *typeOf(std::string_view path) {
    constexpr std::pair<std::string_view, const char *> types[]{
        {".html", "text/html; charset=utf-8"},
        {".css", "text/css; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"},
        {".webmanifest", "application/manifest+json"},
        {".svg", "image/svg+xml"},
        {".png", "image/png"},
        {".woff2", "font/woff2"},
    };
    for (const auto &[ending, type] : types) {
        if (path.ends_with(ending))
            return type;
    }
    return "text/plain; charset=utf-8";
}

} // namespace

Service::Service(Subscribers &subscribers, Database &database, const Options &options)
    : subscribers_(subscribers), database_(database), options_(options), peers_(options.trustedProxies),
      requests_(options.requestsPerSecond, options.requestsPerSecond * burst),
      starts_(options.startsPerMinute / 60.0, options.startsPerMinute) {}

const std::vector<Service::Route> &Service::routes() {
    static const std::vector<Route> all{
        {http::verb::post, "/pair/start", &Service::startPairing},
        {http::verb::get, "/pair/status", &Service::status},
        {http::verb::delete_, "/pair", &Service::endPairing},
        {http::verb::post, "/break", &Service::startBreak},
        {http::verb::delete_, "/break", &Service::endBreak},
        {http::verb::post, "/phone/pair", &Service::pairPhone},
        {http::verb::get, "/phone/events", &Service::events},
        {http::verb::delete_, "/phone/pair", &Service::forgetPhone},
        {http::verb::get, "/healthz", &Service::health},
        {http::verb::get, "/metrics", &Service::metrics},
    };
    return all;
}

net::awaitable<Answer> Service::answer(const Request &request, const net::ip::address &peer) {
    const std::string forwarded = fields(request, "X-Forwarded-For");
    const Call call{request, peers_.client(peer, forwarded), peer.is_loopback() && forwarded.empty()};
    Answer answer;
    if (!requests_.admit(call.client)) {
        answer = tooMany("1");
    } else {
        try {
            answer = co_await routed(call);
        } catch (const SqlError &) {
            answer = error(http::status::service_unavailable, "the database is away");
        }
    }
    if (auto *response = std::get_if<Response>(&answer)) {
        secure(*response);
        ++subscribers_.metrics.responses[response->result_int() / 100 % 6];
    }
    co_return answer;
}

net::awaitable<Answer> Service::routed(const Call &call) {
    const std::string_view path = pathOf(call.request);
    const auto method = call.request.method();
    bool known = false;
    for (const Route &route : routes()) {
        if (path != route.path)
            continue;
        known = true;
        if (method != route.method)
            continue;
        if (isCrossSite(call.request))
            co_return error(http::status::forbidden, "asked by another site");
        co_return co_await (this->*route.handler)(call);
    }
    const auto file = webFiles().find(path == "/" ? "/index.html" : path);
    if (!known && file == webFiles().end())
        co_return error(http::status::not_found, "no such page");
    if (known || (method != http::verb::get && method != http::verb::head))
        co_return error(http::status::method_not_allowed, "not with this method");
    co_return this->file(call.request, file->second);
}

net::awaitable<Answer> Service::startPairing(const Call &call) {
    if (!starts_.admit(call.client))
        co_return tooMany("60");
    const std::string token = randomToken();
    for (;;) {
        const std::string code = randomCode();
        const auto question = [computer = hashOf(token), code](Pairings &pairings) {
            return pairings.start(computer, code);
        };
        const bool isFree = co_await database_.ask<bool>(question);
        if (!isFree)
            continue;
        ++subscribers_.metrics.codes;
        log("code-given", {{"address", call.client}});
        co_return plain(http::status::ok, json{{"code", code}, {"macToken", token}}.dump());
    }
}

net::awaitable<Answer> Service::status(const Call &call) {
    const auto computer = bearer(call.request);
    if (!computer)
        co_return noToken();
    const auto question = [computer = *computer](Pairings &pairings) { return pairings.isPaired(computer); };
    const auto paired = co_await database_.ask<std::optional<bool>>(question);
    if (!paired)
        co_return noToken();
    co_return plain(http::status::ok, json{{"paired", *paired}}.dump());
}

net::awaitable<Answer> Service::endPairing(const Call &call) {
    const auto computer = bearer(call.request);
    if (!computer)
        co_return noToken();
    const auto question = [computer = *computer](Pairings &pairings) {
        return pairings.forgetComputer(computer);
    };
    const bool known = co_await database_.ask<bool>(question);
    if (!known)
        co_return noToken();
    log("unpaired", {{"by", "computer"}});
    co_return plain(http::status::ok, "{}");
}

net::awaitable<Answer> Service::startBreak(const Call &call) {
    if (!isJson(call.request))
        co_return error(http::status::unsupported_media_type, "a break is JSON");
    auto current = breakOf(call.request.body());
    if (!current)
        co_return error(http::status::bad_request, "a break has a kind, a title and seconds");
    co_return co_await setBreak(call, std::move(current));
}

net::awaitable<Answer> Service::endBreak(const Call &call) {
    return setBreak(call, std::nullopt);
}

net::awaitable<Answer> Service::setBreak(const Call &call, std::optional<Break> current) {
    const auto computer = bearer(call.request);
    if (!computer)
        co_return noToken();
    const auto question = [computer = *computer, current](Pairings &pairings) {
        return pairings.setBreak(computer, current);
    };
    const bool known = co_await database_.ask<bool>(question);
    if (!known)
        co_return noToken();
    subscribers_.metrics.breaks += current ? 1 : 0;
    co_return plain(http::status::ok, "{}");
}

net::awaitable<Answer> Service::pairPhone(const Call &call) {
    if (!isJson(call.request))
        co_return error(http::status::unsupported_media_type, "a code is JSON");
    const auto code = codeOf(call.request.body());
    if (!code)
        co_return error(http::status::bad_request, "a code is the text \"code\"");
    const std::string token = randomToken();
    const auto question = [code = *code, phone = hashOf(token), client = call.client](Pairings &pairings) {
        return pairings.claim(code, phone, client);
    };
    const auto claim = co_await database_.ask<Pairings::Claim>(question);
    if (claim != Pairings::Claim::paired) {
        ++subscribers_.metrics.wrongCodes;
        log("code-refused", {{"address", call.client}, {"limit", claim == Pairings::Claim::tooMany}});
        co_return claim == Pairings::Claim::tooMany ? tooMany("900")
                                                    : error(http::status::not_found, "no such code");
    }
    ++subscribers_.metrics.pairings;
    log("paired", {{"address", call.client}});
    Response response = plain(http::status::ok, "{}");
    response.set(http::field::set_cookie, cookie(token, phoneLife));
    co_return response;
}

net::awaitable<Answer> Service::events(const Call &call) {
    const auto phone = phoneOf(call.request);
    if (!phone)
        co_return noToken();
    const auto executor = co_await net::this_coro::executor;
    auto subscriber =
        std::make_shared<Subscriber>(executor, *phone, std::chrono::seconds(options_.heartbeat));
    if (!subscribers_.add(subscriber)) // before it is asked: a change in between must not be missed
        co_return tooMany("10");
    std::optional<PhoneState> state;
    try {
        const auto question = [phone = *phone](Pairings &pairings) { return pairings.stateOf(phone); };
        state = co_await database_.ask<std::optional<PhoneState>>(question);
    } catch (const SqlError &) {
        subscribers_.remove(subscriber);
        throw;
    }
    if (!state) {
        subscribers_.remove(subscriber);
        co_return noToken();
    }
    subscriber->offer(*state);
    co_return subscriber;
}

net::awaitable<Answer> Service::forgetPhone(const Call &call) {
    const auto phone = phoneOf(call.request);
    if (!phone)
        co_return noToken();
    const auto question = [phone = *phone](Pairings &pairings) { return pairings.forgetPhone(phone); };
    const bool known = co_await database_.ask<bool>(question);
    if (known)
        log("unpaired", {{"by", "phone"}});
    Response response = known ? plain(http::status::ok, "{}") : noToken();
    response.set(http::field::set_cookie, cookie("", 0));
    co_return response;
}

net::awaitable<Answer> Service::health(const Call &) {
    const auto question = [](Pairings &pairings) { return pairings.stateOf("").has_value(); };
    co_await database_.ask<bool>(question);
    co_return plain(subscribers_.isDraining() ? http::status::service_unavailable : http::status::ok,
                    subscribers_.isDraining() ? "draining\n" : "ok\n", "text/plain");
}

net::awaitable<Answer> Service::metrics(const Call &call) {
    if (!call.local)
        co_return error(http::status::not_found, "no such page");
    subscribers_.metrics.connections = subscribers_.connections.standing();
    co_return plain(http::status::ok, subscribers_.metrics.text(), "text/plain; version=0.0.4");
}

net::awaitable<void> Service::tellAll() {
    using States = std::vector<std::optional<PhoneState>>;
    for (;;) {
        const auto phones = subscribers_.phones();
        try {
            const auto question = [phones](Pairings &pairings) {
                States found;
                for (const std::string &phone : phones)
                    found.push_back(pairings.stateOf(phone));
                return found;
            };
            const auto states = co_await database_.ask<States>(question);
            for (std::size_t i = 0; i < phones.size(); ++i)
                subscribers_.tell({phones[i], states[i].value_or(PhoneState{PhoneState::unpaired, {}})});
            co_return;
        } catch (const SqlError &) { // which was logged
        }
        const auto executor = co_await net::this_coro::executor;
        net::steady_timer pause(executor, std::chrono::seconds(1));
        co_await pause.async_wait(net::use_awaitable);
    }
}

Response Service::file(const Request &request, std::string_view content) const {
    const std::string_view path = pathOf(request);
    const std::string tag = '"' + hashOf(content).substr(0, 16) + '"';
    const bool known = request[http::field::if_none_match] == tag;
    Response response =
        plain(known ? http::status::not_modified : http::status::ok,
              known ? std::string() : std::string(content), typeOf(path == "/" ? ".html" : path));
    response.set(http::field::etag, tag);
    response.set(http::field::cache_control, "no-cache");
    return response;
}

/// Whether a browser says that another site's page is behind the request.
bool Service::isCrossSite(const Request &request) const {
    const std::string_view site = request["Sec-Fetch-Site"];
    if (!site.empty() && site != "same-origin" && site != "none")
        return true;
    const std::string_view origin = request[http::field::origin];
    if (origin.empty() || origin == options_.publicUrl)
        return false;
    const auto host = origin.find("://");
    return host == std::string_view::npos || origin.substr(host + 3) != request[http::field::host];
}

std::string Service::cookie(const std::string &token, long seconds) const {
    const bool overTls = options_.hasTls() || options_.publicUrl.starts_with("https://");
    return std::string(phoneCookie) + '=' + token +
           "; Path=/; HttpOnly; SameSite=Strict; Max-Age=" + std::to_string(seconds) +
           (overTls ? "; Secure" : "");
}

Response Service::refusal(http::status status) const {
    Response response = error(status, "not understood");
    response.keep_alive(false);
    secure(response);
    return response;
}

http::response<http::empty_body> Service::streamHead() const {
    http::response<http::empty_body> head{http::status::ok, 11};
    head.set(http::field::content_type, "text/event-stream");
    head.set("X-Accel-Buffering", "no"); // or nginx would hold events back
    head.chunked(true);
    secure(head);
    return head;
}

template <class Body> void Service::secure(http::response<Body> &response) const {
    const auto set = [&response](const char *name, const char *value) { response.set(name, value); };
    set("Content-Security-Policy",
        "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; font-src 'self'; "
        "connect-src 'self'; manifest-src 'self'; worker-src 'self'; base-uri 'none'; form-action 'none'; "
        "frame-ancestors 'none'");
    set("X-Content-Type-Options", "nosniff");
    set("X-Frame-Options", "DENY");
    set("Referrer-Policy", "no-referrer");
    set("Cross-Origin-Opener-Policy", "same-origin");
    set("Cross-Origin-Resource-Policy", "same-origin");
    set("Permissions-Policy", "camera=(), geolocation=(), microphone=(), screen-wake-lock=(self)");
    if (options_.hasTls() || options_.publicUrl.starts_with("https://"))
        set("Strict-Transport-Security", "max-age=31536000");
    if (response.find(http::field::cache_control) == response.end())
        set("Cache-Control", "no-store");
}

} // namespace relay
