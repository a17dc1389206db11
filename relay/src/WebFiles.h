#pragma once

#include <map>
#include <string_view>

namespace relay {

/// The files of the phone's page by their paths, each with a slash in front.
const std::map<std::string_view, std::string_view> &webFiles();

} // namespace relay
