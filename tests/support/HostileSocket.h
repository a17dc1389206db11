#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace pavonel::test {

/// A server at a path, whose every connection is a thread of its own that does what the test tells it to.
class HostileSocket {
public:
    /// Is given the connection, which is closed afterwards.
    using Conduct = std::function<void(int connection)>;

    HostileSocket(const QString &path, Conduct conduct);
    HostileSocket(const HostileSocket &) = delete;
    HostileSocket &operator=(const HostileSocket &) = delete;
    ~HostileSocket();

    std::size_t connections() const;

    /// Reads what comes, and says nothing.
    static Conduct silent();

    /// Writes this again and again for as long as somebody reads.
    static Conduct pouring(const QByteArray &piece);

    /// Stands between the caller and the true server at a path. Each piece that the latter sends goes through
    /// `change`; the connection ends when `most` bytes have come out of that.
    static Conduct between(const QString &trueServer, std::function<QByteArray(const QByteArray &)> change,
                           qsizetype most = 1 << 30);

private:
    void accept();

    int socket_;
    Conduct conduct_;
    mutable std::mutex guard_;
    std::vector<int> open_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

} // namespace pavonel::test
