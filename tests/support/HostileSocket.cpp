#include "support/HostileSocket.h"

#include <QFile>

#include <algorithm>
#include <array>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

sockaddr_un addressOf(const QString &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    EXPECT_LT(name.size(), static_cast<qsizetype>(sizeof address.sun_path));
    std::ranges::copy(name, address.sun_path);
    return address;
}

/// Empty at the end.
QByteArray received(int connection) {
    std::array<char, 65'536> piece{};
    const ssize_t size = ::recv(connection, piece.data(), piece.size(), 0);
    return {piece.data(), std::max<ssize_t>(size, 0)};
}

bool sent(int connection, const QByteArray &bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t size = ::send(connection, bytes.data() + done,
                                    static_cast<std::size_t>(bytes.size() - done), MSG_NOSIGNAL);
        if (size <= 0)
            return false;
        done += size;
    }
    return true;
}

} // namespace

HostileSocket::HostileSocket(const QString &path, Conduct conduct)
    : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)), conduct_(std::move(conduct)) {
    const sockaddr_un address = addressOf(path);
    EXPECT_EQ(::bind(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(socket_, 5), 0);
    acceptor_ = std::thread([this] { accept(); });
}

HostileSocket::~HostileSocket() {
    ::shutdown(socket_, SHUT_RDWR);
    acceptor_.join();
    for (const int connection : open_)
        ::shutdown(connection, SHUT_RDWR);
    for (std::thread &thread : threads_)
        thread.join();
    for (const int connection : open_)
        ::close(connection);
    ::close(socket_);
}

std::size_t HostileSocket::connections() const {
    const std::scoped_lock lock(guard_);
    return open_.size();
}

void HostileSocket::accept() {
    for (;;) {
        const int connection = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            return;
        const std::scoped_lock lock(guard_);
        open_.push_back(connection);
        threads_.emplace_back([this, connection] {
            conduct_(connection);
            ::shutdown(connection, SHUT_RDWR);
        });
    }
}

HostileSocket::Conduct HostileSocket::silent() {
    return [](int connection) {
        while (!received(connection).isEmpty()) {
        }
    };
}

HostileSocket::Conduct HostileSocket::pouring(const QByteArray &piece) {
    return [piece](int connection) {
        while (sent(connection, piece)) {
        }
    };
}

HostileSocket::Conduct HostileSocket::between(const QString &trueServer,
                                              std::function<QByteArray(const QByteArray &)> change,
                                              qsizetype most) {
    return [=](int caller) {
        const int server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const sockaddr_un address = addressOf(trueServer);
        bool isOpen = ::connect(server, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
        for (qsizetype left = most; isOpen && left > 0;) {
            std::array<pollfd, 2> ends{pollfd{caller, POLLIN, 0}, pollfd{server, POLLIN, 0}};
            ::poll(ends.data(), ends.size(), -1);
            if (ends[0].revents != 0) {
                const QByteArray said = received(caller);
                isOpen = !said.isEmpty() && sent(server, said);
            } else {
                const QByteArray said = received(server);
                QByteArray changed = change(said);
                changed.truncate(left);
                left -= changed.size();
                isOpen = !said.isEmpty() && sent(caller, changed);
            }
        }
        ::close(server);
    };
}

} // namespace pavonel::test
