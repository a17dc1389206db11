#pragma once

#include <optional>
#include <string>
#include <vector>

namespace pavonel {

/// What the arguments ask the program to do.
enum class Order { start, loginStatus, unregisterLoginItem, updateNow, help, version, status, exportStats };

struct CommandLine {
    Order order = Order::start;
    bool isJson = false; ///< The form in which status and statistics are printed.
    bool follows = false;
};

/// Switches count wherever they stand; of several the first of a fixed order decides. Whatever is no switch
/// of ours means nothing here: it may be Qt's. `arguments` come without the program's name.
CommandLine readCommandLine(const std::vector<std::string> &arguments);

/// Does an order other than `start` and gives the exit status; absent when a start is to follow. Needs no
/// display, and no message bus but for the status.
std::optional<int> obey(const CommandLine &commandLine, int &argc, char **argv);

/// Tells that the environment names no feed, and gives the exit status.
int refuseFeedAddress();

} // namespace pavonel
