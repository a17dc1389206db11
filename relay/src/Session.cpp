#include "Session.h"

#include <array>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/chunk_encode.hpp>
#include <boost/beast/ssl.hpp>
#include <sstream>
#include <string>

namespace relay {

namespace beast = boost::beast;

namespace {

constexpr auto timeout = std::chrono::seconds(10); // for a whole request, and for a whole answer
constexpr std::size_t longestHead = 8 * 1024;
constexpr std::size_t longestBody = 4 * 1024;

http::status statusOf(const boost::system::error_code &error) {
    if (error == http::error::body_limit)
        return http::status::payload_too_large;
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return http::status::request_header_fields_too_large;
    return http::status::bad_request;
}

bool isMisunderstanding(const boost::system::error_code &error) {
    return error.category() == http::make_error_code(http::error::bad_method).category() &&
           error != http::error::end_of_stream && error != http::error::partial_message;
}

std::string textOf(const http::response_header<> &head) {
    std::ostringstream text;
    text << head;
    return text.str();
}

/// Counts a request as long as it is being answered.
class Answering {
public:
    explicit Answering(Subscribers &subscribers) : subscribers_(subscribers) { ++subscribers_.answering; }
    ~Answering() { --subscribers_.answering; }
    Answering(const Answering &) = delete;
    Answering &operator=(const Answering &) = delete;

private:
    Subscribers &subscribers_;
};

/// A phone is in the subscribers until its connection ends, however it ends.
class Waiting {
public:
    Waiting(Subscribers &subscribers, std::shared_ptr<Subscriber> subscriber)
        : subscribers_(subscribers), subscriber_(std::move(subscriber)) {}
    ~Waiting() { subscribers_.remove(subscriber_); }
    Waiting(const Waiting &) = delete;
    Waiting &operator=(const Waiting &) = delete;

private:
    Subscribers &subscribers_;
    std::shared_ptr<Subscriber> subscriber_;
};

template <class Stream> class Session {
public:
    Session(Stream &stream, Service &service, net::ip::address peer)
        : stream_(stream), service_(service), peer_(std::move(peer)) {}

    net::awaitable<void> run() {
        std::shared_ptr<Subscriber> subscriber;
        {
            beast::flat_buffer buffer(longestHead + longestBody);
            while (co_await exchange(buffer, subscriber))
                ;
        }
        if (subscriber)
            co_await tell(subscriber);
    }

private:
    /// One request and its answer; false when no other may follow.
    net::awaitable<bool> exchange(beast::flat_buffer &buffer, std::shared_ptr<Subscriber> &subscriber) {
        http::request_parser<http::string_body> parser;
        parser.header_limit(longestHead);
        parser.body_limit(longestBody);
        beast::get_lowest_layer(stream_).expires_after(timeout);
        boost::system::error_code error;
        co_await http::async_read(stream_, buffer, parser, net::redirect_error(net::use_awaitable, error));
        if (error) {
            if (isMisunderstanding(error)) {
                Response refusal = service_.refusal(statusOf(error));
                co_await write(refusal);
                co_await letRead();
            }
            co_return false;
        }
        const Answering answering(service_.subscribers());
        const Request &request = parser.get();
        Answer answer = co_await service_.answer(request, peer_);
        if (auto *found = std::get_if<std::shared_ptr<Subscriber>>(&answer)) {
            subscriber = std::move(*found);
            co_return false;
        }
        auto &response = std::get<Response>(answer);
        response.version(request.version());
        response.keep_alive(request.keep_alive() && !service_.subscribers().isDraining());
        co_return co_await write(response, request.method() == http::verb::head);
    }

    net::awaitable<bool> write(Response &response, bool headOnly = false) {
        response.prepare_payload();
        std::string text = textOf(response);
        if (!headOnly)
            text += response.body();
        co_await write(text);
        co_return response.keep_alive();
    }

    /// To close while something is still arriving would take the refusal away from who is to read it.
    net::awaitable<void> letRead() {
        constexpr auto moment = std::chrono::seconds(1);
        auto &socket = beast::get_lowest_layer(stream_);
        boost::system::error_code error;
        socket.socket().shutdown(net::ip::tcp::socket::shutdown_send, error);
        socket.expires_after(moment);
        std::array<char, 4096> thrownAway{};
        while (!error)
            co_await socket.async_read_some(net::buffer(thrownAway),
                                            net::redirect_error(net::use_awaitable, error));
    }

    /// Tells the phone of every change, until it or the service leaves.
    net::awaitable<void> tell(const std::shared_ptr<Subscriber> &subscriber) {
        const Waiting waiting(service_.subscribers(), subscriber);
        bool reads = false;
        char unexpected = 0;
        try {
            co_await write(textOf(service_.streamHead()));
            beast::get_lowest_layer(stream_).expires_never();
            reads = true;
            stream_.async_read_some(net::buffer(&unexpected, 1),
                                    [subscriber, &reads](const boost::system::error_code &, std::size_t) {
                                        reads = false;
                                        subscriber->hangUp();
                                    });
            while (!subscriber->isGone()) {
                const std::string text = subscriber->next();
                if (!text.empty())
                    co_await writeEvent(text);
                else if (subscriber->isOver())
                    break;
                else
                    co_await subscriber->wait();
            }
            if (!subscriber->isGone())
                co_await write(beast::buffers_to_string(http::make_chunk_last()));
        } catch (const boost::system::system_error &) { // the phone is gone
        }
        beast::get_lowest_layer(stream_).close();
        while (reads)
            co_await subscriber->wait();
    }

    net::awaitable<void> writeEvent(const std::string &text) {
        co_await write(beast::buffers_to_string(http::make_chunk(net::buffer(text))));
        ++service_.subscribers().metrics.events;
    }

    net::awaitable<void> write(const std::string &text) {
        beast::get_lowest_layer(stream_).expires_after(timeout);
        co_await net::async_write(stream_, net::buffer(text), net::use_awaitable);
    }

    Stream &stream_;
    Service &service_;
    net::ip::address peer_;
};

} // namespace

net::awaitable<void> converse(beast::tcp_stream stream, std::shared_ptr<net::ssl::context> tls,
                              [[maybe_unused]] ConnectionLimit::Place place, Service &service) {
    try {
        const auto peer = stream.socket().remote_endpoint().address();
        if (!tls) {
            co_await Session(stream, service, peer).run();
        } else {
            beast::ssl_stream<beast::tcp_stream> secured(std::move(stream), *tls);
            beast::get_lowest_layer(secured).expires_after(timeout);
            co_await secured.async_handshake(net::ssl::stream_base::server, net::use_awaitable);
            co_await Session(secured, service, peer).run();
        }
    } catch (const boost::system::system_error &) { // the other end is gone, or too slow
    }
}

} // namespace relay
