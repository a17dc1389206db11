#include "Options.h"

#include <algorithm>
#include <boost/program_options.hpp>
#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace relay {

namespace po = boost::program_options;

namespace {

constexpr std::string_view environmentPrefix = "PAVONEL_RELAY_";

std::string defaultDatabase() {
    const char *state = std::getenv("XDG_STATE_HOME");
    const char *home = std::getenv("HOME");
    const std::filesystem::path folder = state && *state
                                             ? std::filesystem::path(state)
                                             : std::filesystem::path(home ? home : ".") / ".local/state";
    return "sqlite:" + (folder / "pavonel-relay/relay.db").string();
}

template <class Value> auto *into(Value &place, Value preset) {
    return po::value(&place)->default_value(std::move(preset));
}

po::options_description described(Options &options) {
    po::options_description all("pavonel-relay: the pairing service of Pavonel, and its page for the phone");
    auto add = all.add_options();
    add("help", "says this");
    add("version", "says the version");
    add("address", into<std::string>(options.address, "127.0.0.1"), "where to listen");
    add("port", into<unsigned short>(options.port, 8787), "0 takes a free one");
    add("public-url", into<std::string>(options.publicUrl, ""),
        "how phones reach the service, as https://pair.example.org");
    add("database", into<std::string>(options.database, defaultDatabase()), "sqlite:PATH or postgresql://…");
    add("trusted-proxy", po::value(&options.trustedProxies)->composing(),
        "an address or network whose X-Forwarded-For is believed; may be given again");
    add("certificate", into<std::string>(options.certificate, ""), "PEM file; read again on SIGHUP");
    add("key", into<std::string>(options.key, ""), "its PEM file");
    add("guesses-per-address", into(options.guesses.perAddress, 5), "wrong codes in fifteen minutes");
    add("guesses-overall", into(options.guesses.overall, 60), "the same of all addresses together");
    add("starts-per-minute", into(options.startsPerMinute, 10), "new codes for one address");
    add("requests-per-second", into(options.requestsPerSecond, 20), "of one address");
    add("connections", into(options.connections, 0), "at once; 0 is what the system's limit of files leaves");
    add("connections-per-address", into(options.connectionsPerAddress, 256), "at once");
    add("heartbeat", into(options.heartbeat, 25), "seconds between signs of life to a phone");
    return all;
}

/// PAVONEL_RELAY_PUBLIC_URL stands for --public-url.
std::string switchOf(const std::string &variable, const po::options_description &known) {
    if (!variable.starts_with(environmentPrefix))
        return {};
    std::string name = variable.substr(environmentPrefix.size());
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c == '_' ? '-' : static_cast<char>(std::tolower(c)); });
    return known.find_nothrow(name, false) ? name : std::string();
}

void check(Options &options) {
    if (options.certificate.empty() != options.key.empty())
        throw std::runtime_error("--certificate and --key belong together");
    if (std::min({options.guesses.perAddress, options.guesses.overall, options.startsPerMinute,
                  options.requestsPerSecond, options.connectionsPerAddress, options.heartbeat}) < 1)
        throw std::runtime_error("a limit is at least 1");
    while (options.publicUrl.ends_with('/'))
        options.publicUrl.pop_back();
    if (!options.publicUrl.empty() && !options.publicUrl.starts_with("https://") &&
        !options.publicUrl.starts_with("http://"))
        throw std::runtime_error("--public-url begins with https:// or http://");
}

} // namespace

std::optional<Options> optionsFrom(int count, char *arguments[]) {
    Options options;
    const auto known = described(options);
    po::variables_map given;
    po::store(po::command_line_parser(count, arguments).options(known).positional({}).run(), given);
    po::store(
        po::parse_environment(known, [&](const std::string &variable) { return switchOf(variable, known); }),
        given);
    if (given.count("help") != 0 || given.count("version") != 0) {
        if (given.count("help") != 0)
            std::cout << known
                      << "Each switch may stand in the environment: PAVONEL_RELAY_PORT for --port.\n";
        else
            std::cout << "pavonel-relay " PAVONEL_RELAY_VERSION "\n";
        return {};
    }
    po::notify(given);
    check(options);
    return options;
}

} // namespace relay
