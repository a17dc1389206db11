#include "Requests.h"

#include "Clock.h"
#include "Secrets.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace relay {

namespace http = boost::beast::http;
using nlohmann::json;

namespace {

/// Discarded when it is no JSON.
json parsed(const std::string &body) {
    return json::parse(body, nullptr, false);
}

std::int64_t endOf(std::int64_t seconds) {
    constexpr std::int64_t year = 366 * 24 * 3600;
    return nowMilliseconds() + 1000 * std::clamp<std::int64_t>(seconds, 0, year);
}

} // namespace

std::string fields(const http::request<http::string_body> &request, std::string_view name) {
    std::string all;
    const auto [first, last] = request.equal_range(name);
    for (auto field = first; field != last; ++field) {
        all += all.empty() ? "" : ",";
        all += field->value();
    }
    return all;
}

std::optional<std::string> bearer(const http::request<http::string_body> &request) {
    constexpr std::string_view scheme = "Bearer ";
    const std::string_view value = request[http::field::authorization];
    if (!value.starts_with(scheme))
        return {};
    return hashOf(value.substr(scheme.size()));
}

std::optional<std::string> phoneOf(const http::request<http::string_body> &request) {
    std::string_view rest = request[http::field::cookie];
    while (!rest.empty()) {
        const auto end = std::min(rest.find(';'), rest.size());
        std::string_view pair = rest.substr(0, end);
        pair.remove_prefix(std::min(pair.find_first_not_of(' '), pair.size()));
        if (pair.starts_with(phoneCookie) && pair.substr(phoneCookie.size()).starts_with('='))
            return hashOf(pair.substr(phoneCookie.size() + 1));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {};
}

std::optional<Break> breakOf(const std::string &body) {
    const json given = parsed(body);
    const auto member = [&given](const char *name) {
        return given.is_object() ? given.value(name, json()) : json();
    };
    const json kind = member("kind");
    const json title = member("title");
    const json seconds = member("seconds");
    constexpr std::array kinds{"micro", "long", "planned"};
    if (!title.is_string() || !seconds.is_number_integer() ||
        std::none_of(kinds.begin(), kinds.end(), [&kind](const char *known) { return kind == known; }))
        return {};
    return Break{kind, title, seconds, endOf(seconds)};
}

std::optional<std::string> codeOf(const std::string &body) {
    const json given = parsed(body);
    if (!given.is_object() || !given.contains("code") || !given["code"].is_string())
        return {};
    return tidiedCode(given["code"].get_ref<const std::string &>());
}

} // namespace relay
