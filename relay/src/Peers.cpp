#include "Peers.h"

#include <algorithm>
#include <stdexcept>

namespace relay {

namespace ip = boost::asio::ip;

namespace {

constexpr unsigned mappedBits = 96; // in front of an IPv4 address

ip::address_v6 wide(const ip::address &address) {
    return address.is_v6() ? address.to_v6() : ip::make_address_v6(ip::v4_mapped, address.to_v4());
}

ip::address narrow(const ip::address &address) {
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        return ip::make_address_v4(ip::v4_mapped, address.to_v6());
    return address;
}

ip::address_v6::bytes_type masked(ip::address_v6::bytes_type bytes, unsigned bits) {
    for (unsigned i = 0; i < bytes.size(); ++i) {
        const unsigned kept = std::min(8U, bits > 8 * i ? bits - 8 * i : 0U);
        bytes[i] = static_cast<unsigned char>(bytes[i] & (0xFF00U >> kept));
    }
    return bytes;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank = " \t";
    const auto first = text.find_first_not_of(blank);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blank) - first + 1);
}

} // namespace

Peers::Peers(const std::vector<std::string> &trusted) {
    for (const std::string &text : trusted) {
        const auto slash = text.find('/');
        boost::system::error_code error;
        const auto base = ip::make_address(text.substr(0, slash), error);
        const unsigned offset = !error && base.is_v4() ? mappedBits : 0;
        unsigned long bits = 128;
        if (slash != std::string::npos)
            bits = std::strtoul(text.c_str() + slash + 1, nullptr, 10) + offset;
        if (error || bits > 128)
            throw std::runtime_error("--trusted-proxy: " + text + " is no address and no network");
        trusted_.push_back({wide(base), static_cast<unsigned>(bits)});
    }
}

bool Peers::isTrusted(const ip::address &address) const {
    return std::any_of(
        trusted_.begin(), trusted_.end(), [bytes = wide(address).to_bytes()](const Network &network) {
            return masked(bytes, network.bits) == masked(network.base.to_bytes(), network.bits);
        });
}

std::string Peers::client(const ip::address &peer, std::string_view forwardedFor) const {
    ip::address client = peer;
    while (isTrusted(client) && !forwardedFor.empty()) {
        const auto comma = forwardedFor.rfind(',');
        const auto last = trimmed(forwardedFor.substr(comma == std::string_view::npos ? 0 : comma + 1));
        forwardedFor = forwardedFor.substr(0, comma == std::string_view::npos ? 0 : comma);
        boost::system::error_code error;
        const auto address = ip::make_address(std::string(last), error);
        if (error)
            break;
        client = address;
    }
    return name(client);
}

std::string Peers::name(const ip::address &address) {
    constexpr unsigned network = 64;
    const ip::address plain = narrow(address);
    return plain.is_v4() ? plain.to_string()
                         : ip::make_address_v6(masked(plain.to_v6().to_bytes(), network)).to_string() + "/64";
}

} // namespace relay
