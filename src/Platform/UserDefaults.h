#pragma once

#include "Platform/Time.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <variant>

namespace pavonel {

/// A value of the user defaults store. Whole numbers and fractions are told apart only by whether the stored
/// number has a fraction; a reader converts where that is exact.
using StoredValue = std::variant<bool, qint64, double, QString, QStringList, QByteArray, Instant>;

/// The per-user store of settings and statistics: a dictionary that outlives the process.
class UserDefaults {
public:
    /// Yields the value to store, or nothing to leave what is stored.
    using Encoder = std::function<std::optional<StoredValue>()>;

    UserDefaults() = default;
    UserDefaults(const UserDefaults &) = delete;
    UserDefaults &operator=(const UserDefaults &) = delete;
    virtual ~UserDefaults() = default;

    /// Absent when the key is missing or holds something that is none of the stored types.
    virtual std::optional<StoredValue> value(const QString &key) const = 0;

    /// On disk within a second.
    virtual void set(const QString &key, StoredValue value) = 0;

    /// For a value that changes every second: `encode` is asked only when the store is read or written, and
    /// the value is on disk within a minute. It must stay callable as long as the store or until replaced.
    virtual void setLazily(const QString &key, Encoder encode) = 0;

    /// That what the key's encoder yields is another value by now; it too is on disk within a minute.
    virtual void noteChange(const QString &key) = 0;

    virtual void remove(const QString &key) = 0;

    /// Begins to write what is pending, without waiting for the disk. A write that fails stays pending and is
    /// tried again.
    virtual void save() = 0;

    /// Saves and waits until it is done, for the last moment before an end; after some seconds it gives up.
    virtual void flush() = 0;
};

} // namespace pavonel
