#pragma once

#include <boost/asio/ip/address.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace relay {

/// Tells who is at the other end, through proxies that are trusted.
class Peers {
public:
    /// Of addresses and networks. Throws std::exception with a sentence for the user.
    explicit Peers(const std::vector<std::string> &trusted);

    bool isTrusted(const boost::asio::ip::address &address) const;

    /// What limits count by: the client's address, or its network where one has a network to itself (IPv6).
    /// Of the forwarded addresses the last that no trusted proxy has.
    std::string client(const boost::asio::ip::address &peer, std::string_view forwardedFor) const;

    static std::string name(const boost::asio::ip::address &address);

private:
    struct Network {
        boost::asio::ip::address_v6 base;
        unsigned bits;
    };
    std::vector<Network> trusted_;
};

} // namespace relay
