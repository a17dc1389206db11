#pragma once

#include "Service.h"

#include <boost/asio/ssl/context.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <memory>

namespace relay {

/// Answers one connection after another request, until its end. With a context, over TLS.
net::awaitable<void> converse(boost::beast::tcp_stream stream, std::shared_ptr<net::ssl::context> tls,
                              ConnectionLimit::Place place, Service &service);

} // namespace relay
