#pragma once

#include <QString>

namespace pavonel {

/// A lock between processes that ends with its holder, however that ends.
class FileLock {
public:
    enum class State {
        held,
        takenByAnother,
        impossible ///< No such file can be made here, or the file system knows no locks.
    };

    /// Tries to take the lock. The file and its folder are made, and the file stays.
    explicit FileLock(const QString &path);
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;
    ~FileLock();

    State state() const { return state_; }

private:
    int descriptor_;
    State state_;
};

} // namespace pavonel
