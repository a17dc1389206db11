#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace relay {

/// One line of JSON on standard error: when, what, and the details. JSON's escapes keep a line one line.
/// Tokens, codes and titles of breaks are never among the details.
void log(std::string_view event, nlohmann::ordered_json details = nlohmann::ordered_json::object());

} // namespace relay
