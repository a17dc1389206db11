#pragma once

#include "Core/Updater.h"

#include <ostream>

namespace pavonel {

/// How a state of the updater shows in the message of a failed test; those without a text show their number.
inline void PrintTo(const Updater::Available &offer, std::ostream *out) {
    *out << offer.version.toStdString() << " is available: " << offer.notes.toStdString();
}

inline void PrintTo(const Updater::Failed &failure, std::ostream *out) {
    *out << "failed: " << failure.message.toStdString();
}

} // namespace pavonel
