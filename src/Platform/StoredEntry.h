#pragma once

#include "Platform/UserDefaults.h"

namespace pavonel {

/// What lies in the store on the disk under one key.
struct StoredEntry {
    std::optional<StoredValue> value; ///< Absent when there is none, or none that can be read.
    bool isDamaged = false;           ///< There is something that cannot be read.
};

/// Changes nothing, whichever process the store belongs to at the moment. That one may
/// know more already: see `UserDefaults::setLazily`.
StoredEntry readStoredEntry(const QString &key);

} // namespace pavonel
