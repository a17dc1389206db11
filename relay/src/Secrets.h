#pragma once

#include <string>
#include <string_view>

namespace relay {

/// 256 bits of the system's generator, in letters that a header and a cookie may hold.
std::string randomToken();

/// What is stored in a token's place: it tells the token again, but cannot be turned back into it.
std::string hashOf(std::string_view token);

/// Six characters of the system's generator, none of which looks like another.
std::string randomCode();

/// A code as it was typed, in capitals and without spaces and dashes; empty when it cannot be one.
std::string tidiedCode(std::string_view typed);

} // namespace relay
