#include "Greeting.h"

#include <qrencode.h>

#include <boost/asio/ip/address.hpp>
#include <iostream>
#include <memory>

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

namespace relay {

namespace ip = boost::asio::ip;

namespace {

/// The address that others in the same network know this machine by; its own name for itself without one.
std::string addressInNetwork() {
    ifaddrs *all = nullptr;
    if (getifaddrs(&all) != 0)
        return "127.0.0.1";
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> guard(all, &freeifaddrs);
    for (const ifaddrs *one = all; one; one = one->ifa_next) {
        if (!one->ifa_addr || one->ifa_addr->sa_family != AF_INET || (one->ifa_flags & IFF_LOOPBACK) != 0U)
            continue;
        const auto *address = reinterpret_cast<const sockaddr_in *>(one->ifa_addr);
        return ip::make_address_v4(ntohl(address->sin_addr.s_addr)).to_string();
    }
    return "127.0.0.1";
}

std::string inUrl(const std::string &address) {
    return address.find(':') == std::string::npos ? address : '[' + address + ']';
}

/// Two rows of modules in each line, dark on light with the margin that cameras need.
void printQrCode(const std::string &text) {
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_L), &QRcode_free);
    if (!code)
        return;
    constexpr int margin = 2;
    const auto isDark = [&code](int x, int y) {
        const bool within = x >= 0 && y >= 0 && x < code->width && y < code->width;
        return within && (code->data[y * code->width + x] & 1U) != 0U;
    };
    for (int y = -margin; y < code->width + margin; y += 2) {
        std::cout << "    \x1b[30;107m";
        for (int x = -margin; x < code->width + margin; ++x) {
            constexpr const char *blocks[2][2]{{" ", "▄"}, {"▀", "█"}};
            std::cout << blocks[isDark(x, y) ? 1 : 0][isDark(x, y + 1) ? 1 : 0];
        }
        std::cout << "\x1b[0m\n";
    }
}

} // namespace

void greet(const Options &options, unsigned short port) {
    const auto address = ip::make_address(options.address);
    const std::string scheme = options.hasTls() ? "https://" : "http://";
    const std::string end = ':' + std::to_string(port);
    const std::string known = address.is_unspecified() ? addressInNetwork() : options.address;
    const std::string url = options.publicUrl.empty() ? scheme + inUrl(known) + end : options.publicUrl;
    std::cout << "listening on " << scheme << inUrl(options.address) << end << "\n\n"
              << "On the phone:     " << url << '\n';
    if (isatty(STDOUT_FILENO) != 0)
        printQrCode(url);
    if (options.publicUrl.empty() && address.is_loopback())
        std::cout << "Only this machine can reach that. For phones in your network: --address 0.0.0.0\n";
    std::cout << "On the computer:  PAVONEL_PAIR_HOST=" << url << " ./run\n" << std::flush;
}

} // namespace relay
