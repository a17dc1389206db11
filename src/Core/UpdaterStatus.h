#pragma once

#include "Platform/Time.h"

#include <QString>

namespace pavonel {

class Updater;

/// How it stands with newer versions, in a sentence. Nothing during a download, which has a progress instead.
QString updaterStatus(const Updater &updater, Instant now);

} // namespace pavonel
