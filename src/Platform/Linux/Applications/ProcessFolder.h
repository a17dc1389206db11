#pragma once

#include "Platform/Applications.h"

#include <QByteArray>
#include <QByteArrayList>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace pavonel {

/// What /proc tells about one process. The process may end at any time; the answers are empty then.
class ProcessFolder {
public:
    /// `root` is the folder of all processes, open; it must stay so.
    ProcessFolder(int root, ProcessId process);

    ProcessId id() const { return id_; }

    /// Whether the process runs as our user.
    bool isOurs() const;

    /// Whether this is but a thread of another process: the folder has an entry for those, too, unlisted.
    bool isThread() const;

    /// The path of the running program; empty when it may not be known, absent when the process is gone.
    std::optional<QByteArray> executable() const;

    QByteArrayList arguments() const;

    /// The identifier that Flatpak runs it under.
    QString flatpak() const;

    /// The name of the systemd unit that it belongs to, escaped as systemd does.
    QByteArray unit() const;

    /// The inodes of its sockets; none when they may not be known.
    std::vector<std::uint64_t> sockets() const;

    /// The contents of a file in the folder, only the beginning of one much longer than `most` bytes.
    QByteArray read(const char *file, qsizetype most = 8192) const;

private:
    using Path = std::array<char, 64>;
    Path pathOf(const char *file) const;

    int root_;
    ProcessId id_;
};

/// The identifier of a desktop file, as the name of an application's unit tells it; empty for other units.
QString identifierOfUnit(const QByteArray &unit);

} // namespace pavonel
