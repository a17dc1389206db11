#pragma once

#include "Platform/Time.h"

#include <QString>

namespace pavonel {

/// A moment as people name it from another one: "now", "5 minutes ago", "yesterday", "in 2 hours". In whole
/// units, the largest that fits; a month counts as 30 days and a year as 365.
QString relativeTime(Instant moment, Instant now);

} // namespace pavonel
