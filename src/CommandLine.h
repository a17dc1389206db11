#pragma once

#include <optional>
#include <string>
#include <vector>

namespace pavonel {

/// What the arguments ask the program to do.
struct CommandLine {
    enum class Order { start, loginStatus, unregisterLoginItem, updateNow, help, version, refuse };

    Order order = Order::start;
    std::string unknown; ///< The argument for which the order is to refuse.
};

/// Switches count wherever they stand; of several the first of a fixed order decides.
/// `arguments` come without the program's name.
CommandLine readCommandLine(const std::vector<std::string> &arguments);

/// Does an order other than `start` and gives the exit status; absent when a start is to follow. Needs no
/// display and no message bus.
std::optional<int> obey(const CommandLine &commandLine, int &argc, char **argv);

/// Tells that the environment names no feed, and gives the exit status.
int refuseFeedAddress();

} // namespace pavonel
