#pragma once

#include "Platform/UserDefaults.h"

#include <map>

/// The text forms of the store's file: one JSON object whose member names are the keys.
namespace pavonel::storedJson {

/// Every value in the very bytes that stand for it in the file, so that a member that this version does not
/// understand is written back to the letter.
using Members = std::map<QString, QByteArray>;

/// Absent when the text is not one whole JSON object. Of members of the same name the last one counts.
std::optional<Members> readMembers(const QByteArray &json);

QByteArray writeMembers(const Members &members);

/// Absent for what JSON cannot hold: a number that is not finite, a date outside the years 1 to 9999.
std::optional<QByteArray> encode(const StoredValue &value);

/// Absent when the JSON value is in none of the forms that `encode` gives.
std::optional<StoredValue> decode(const QByteArray &json);

} // namespace pavonel::storedJson
