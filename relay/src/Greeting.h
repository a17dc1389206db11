#pragma once

#include "Options.h"

namespace relay {

/// Says on standard output where the service is, how the phone gets there (with a code for its camera) and
/// how the computer does.
void greet(const Options &options, unsigned short port);

} // namespace relay
