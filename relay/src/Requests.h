#pragma once

#include "State.h"

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace relay {

/// The token of "Authorization: Bearer …", as its hash; absent without one.
std::optional<std::string>
bearer(const boost::beast::http::request<boost::beast::http::string_body> &request);

/// The token of the phone's cookie, as its hash; absent without one.
std::optional<std::string>
phoneOf(const boost::beast::http::request<boost::beast::http::string_body> &request);
inline constexpr std::string_view phoneCookie = "pavonel_phone";

/// Every field of that name, with commas between.
std::string fields(const boost::beast::http::request<boost::beast::http::string_body> &request,
                   std::string_view name);

/// Absent for a body that is no break.
std::optional<Break> breakOf(const std::string &body);

/// Absent for a body that holds no code; what cannot be a code yields an empty one.
std::optional<std::string> codeOf(const std::string &body);

} // namespace relay
