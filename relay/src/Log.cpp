#include "Log.h"

#include <ctime>

#include <unistd.h>

namespace relay {

void log(std::string_view event, nlohmann::ordered_json details) {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char time[32];
    std::strftime(time, sizeof time, "%Y-%m-%dT%H:%M:%SZ", &utc);
    nlohmann::ordered_json line{{"time", time}, {"event", event}};
    line.update(details);
    const std::string text =
        line.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace) + '\n';
    if (::write(STDERR_FILENO, text.data(), text.size()) < 0)
        return; // there is nobody left to tell
}

} // namespace relay
