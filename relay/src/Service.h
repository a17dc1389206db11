#pragma once

#include "Database.h"
#include "Options.h"
#include "Peers.h"
#include "Subscribers.h"

#include <boost/asio/awaitable.hpp>
#include <boost/beast/http.hpp>
#include <memory>
#include <variant>

namespace relay {

namespace http = boost::beast::http;

using Request = http::request<http::string_body>;
using Response = http::response<http::string_body>;
using Answer = std::variant<Response, std::shared_ptr<Subscriber>>;

/// What each request is answered. A phone that comes to wait is in the subscribers when its subscriber is the
/// answer.
class Service {
public:
    Service(Subscribers &subscribers, Database &database, const Options &options);

    net::awaitable<Answer> answer(const Request &request, const net::ip::address &peer);

    /// Of a request that could not be read.
    Response refusal(http::status status) const;

    /// The head of a stream of events.
    http::response<http::empty_body> streamHead() const;

    Subscribers &subscribers() { return subscribers_; }
    const Peers &peers() const { return peers_; }

    /// Reads anew what every waiting phone is to show.
    net::awaitable<void> tellAll();

private:
    struct Call {
        const Request &request;
        std::string client;
        bool local; ///< From this machine itself, through no proxy.
    };
    using Handler = net::awaitable<Answer> (Service::*)(const Call &);
    struct Route {
        http::verb method;
        const char *path;
        Handler handler;
    };
    static const std::vector<Route> &routes();

    net::awaitable<Answer> routed(const Call &call);
    net::awaitable<Answer> startPairing(const Call &call);
    net::awaitable<Answer> status(const Call &call);
    net::awaitable<Answer> endPairing(const Call &call);
    net::awaitable<Answer> startBreak(const Call &call);
    net::awaitable<Answer> endBreak(const Call &call);
    net::awaitable<Answer> setBreak(const Call &call, std::optional<Break> current);
    net::awaitable<Answer> pairPhone(const Call &call);
    net::awaitable<Answer> events(const Call &call);
    net::awaitable<Answer> forgetPhone(const Call &call);
    net::awaitable<Answer> health(const Call &call);
    net::awaitable<Answer> metrics(const Call &call);
    Response file(const Request &request, std::string_view content) const;

    bool isCrossSite(const Request &request) const;
    std::string cookie(const std::string &token, long seconds) const;
    template <class Body> void secure(http::response<Body> &response) const;

    Subscribers &subscribers_;
    Database &database_;
    const Options &options_;
    Peers peers_;
    RateLimit requests_;
    RateLimit starts_;
};

} // namespace relay
