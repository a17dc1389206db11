#include "Server.h"

#include "Log.h"
#include "Session.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/redirect_error.hpp>
#include <csignal>

#include <netinet/tcp.h>

namespace relay {

using tcp = net::ip::tcp;

namespace {

/// A phone that vanished without a word is noticed within a minute, by the kernel.
void noticeSilence(tcp::socket &socket) {
    using UserTimeout = net::detail::socket_option::integer<IPPROTO_TCP, TCP_USER_TIMEOUT>;
    constexpr int minute = 60'000;
    boost::system::error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    socket.set_option(UserTimeout(minute), ignored);
}

} // namespace

Server::Server(net::io_context &context, Service &service, const Options &options)
    : context_(context), service_(service), options_(options), acceptor_(context),
      signals_(context, SIGTERM, SIGINT, SIGHUP) {
    const tcp::endpoint place(net::ip::make_address(options.address), options.port);
    acceptor_.open(place.protocol());
    acceptor_.set_option(tcp::acceptor::reuse_address(true));
    acceptor_.bind(place);
    acceptor_.listen(4096);
    if (options.hasTls())
        readCertificate();
}

void Server::start() {
    net::co_spawn(context_, accept(), net::detached);
    net::co_spawn(context_, watchSignals(), net::detached);
}

void Server::readCertificate() {
    auto tls = std::make_shared<net::ssl::context>(net::ssl::context::tls_server);
    tls->set_options(net::ssl::context::default_workarounds | net::ssl::context::no_tlsv1 |
                     net::ssl::context::no_tlsv1_1 | net::ssl::context::no_compression);
    SSL_CTX_set_mode(tls->native_handle(), SSL_MODE_RELEASE_BUFFERS); // a waiting phone needs none
    tls->use_certificate_chain_file(options_.certificate);
    tls->use_private_key_file(options_.key, net::ssl::context::pem);
    tls_ = std::move(tls);
}

net::awaitable<void> Server::accept() {
    net::steady_timer timer(context_);
    while (acceptor_.is_open()) {
        boost::system::error_code error;
        tcp::socket socket = co_await acceptor_.async_accept(net::redirect_error(net::use_awaitable, error));
        if (error == net::error::operation_aborted)
            co_return;
        if (error) { // no file is left for it
            timer.expires_after(std::chrono::milliseconds(100));
            co_await timer.async_wait(net::redirect_error(net::use_awaitable, error));
            continue;
        }
        const auto peer = socket.remote_endpoint(error).address();
        auto place =
            service_.subscribers().connections.enter(Peers::name(peer), !service_.peers().isTrusted(peer));
        if (error || !place) {
            ++service_.subscribers().metrics.refusedConnections;
            continue;
        }
        noticeSilence(socket);
        net::co_spawn(context_,
                      converse(boost::beast::tcp_stream(std::move(socket)), tls_, std::move(place), service_),
                      net::detached);
    }
}

net::awaitable<void> Server::watchSignals() {
    for (;;) {
        const int signal = co_await signals_.async_wait(net::use_awaitable);
        if (signal != SIGHUP)
            co_return co_await drain();
        if (!tls_)
            continue;
        try {
            readCertificate();
            log("certificate-read");
        } catch (const std::exception &error) {
            log("certificate-kept", {{"reason", error.what()}});
        }
    }
}

/// Everyone is answered and told to come back; who has not taken it by then is left.
net::awaitable<void> Server::drain() {
    using namespace std::chrono_literals;
    log("draining");
    acceptor_.close();
    service_.subscribers().drain();
    net::steady_timer timer(context_);
    const auto deadline = std::chrono::steady_clock::now() + 4s;
    while (!service_.subscribers().isEmpty() && std::chrono::steady_clock::now() < deadline) {
        timer.expires_after(10ms);
        co_await timer.async_wait(net::use_awaitable);
    }
    log("stopped");
    context_.stop();
}

} // namespace relay
