#pragma once

#include "Options.h"
#include "Service.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/ssl/context.hpp>
#include <memory>
#include <string>

namespace relay {

/// Listens, and leaves in good order on SIGTERM and SIGINT.
class Server {
public:
    Server(net::io_context &context, Service &service, const Options &options);

    unsigned short port() const { return acceptor_.local_endpoint().port(); }
    void start();

private:
    net::awaitable<void> accept();
    net::awaitable<void> watchSignals();
    net::awaitable<void> drain();
    void readCertificate();

    net::io_context &context_;
    Service &service_;
    const Options &options_;
    net::ip::tcp::acceptor acceptor_;
    net::signal_set signals_;
    std::shared_ptr<net::ssl::context> tls_; ///< Absent without TLS.
};

} // namespace relay
