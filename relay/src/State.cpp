#include "State.h"

#include <nlohmann/json.hpp>

namespace relay {

using nlohmann::json;

std::string toText(const std::optional<Break> &current) {
    if (!current)
        return {};
    return json{{"kind", current->kind},
                {"title", current->title},
                {"seconds", current->seconds},
                {"endsAt", current->endsAt}}
        .dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<Break> breakFrom(const std::string &text) {
    if (text.empty())
        return {};
    const json stored = json::parse(text);
    return Break{stored.at("kind"), stored.at("title"), stored.at("seconds"), stored.at("endsAt")};
}

std::string toText(const Change &change) {
    return change.phone + ' ' + std::to_string(change.state.version) + ' ' + toText(change.state.current);
}

std::optional<Change> changeFrom(const std::string &text) {
    const auto afterPhone = text.find(' ');
    const auto afterVersion = text.find(' ', afterPhone + 1);
    if (afterPhone == std::string::npos || afterVersion == std::string::npos)
        return {};
    try {
        return Change{text.substr(0, afterPhone),
                      {std::stoll(text.substr(afterPhone + 1)), breakFrom(text.substr(afterVersion + 1))}};
    } catch (const std::exception &) {
        return {};
    }
}

} // namespace relay
