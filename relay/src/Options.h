#pragma once

#include "Pairings.h"

#include <optional>
#include <string>
#include <vector>

namespace relay {

struct Options {
    std::string address;
    unsigned short port = 0;
    std::string publicUrl; ///< Without a slash at its end; empty when it follows from address and port.
    std::string database;
    std::vector<std::string> trustedProxies;
    std::string certificate;
    std::string key;
    GuessLimits guesses;
    int startsPerMinute = 0;
    int requestsPerSecond = 0;
    int connections = 0;
    int connectionsPerAddress = 0;
    int heartbeat = 0; ///< Seconds.

    bool hasTls() const { return !certificate.empty(); }
};

/// From switches and, where those are silent, from the environment. Absent when all was said with a help text
/// or the version. Throws std::exception with a sentence for the user.
std::optional<Options> optionsFrom(int count, char *arguments[]);

} // namespace relay
