#pragma once

#include "Platform/Qt/StoredJson.h"
#include "Platform/StoredEntry.h"

namespace pavonel {

/// The members of the store in this file. Absent when it cannot be used: damaged, absurdly large, not a
/// regular file, or unreadable.
std::optional<storedJson::Members> readStoreFile(const QString &path);

/// What the store in this file has under the key. That there is no file is no damage.
StoredEntry readStoredEntryFrom(const QString &path, const QString &key);

} // namespace pavonel
