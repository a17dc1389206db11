#include "Platform/Linux/Sway/SwayIpc.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace pavonel {

namespace {

constexpr std::uint32_t firstEvent = 0x80000000;

/// What stands before each message.
struct Header {
    std::array<char, 6> magic{'i', '3', '-', 'i', 'p', 'c'};
    std::uint32_t length = 0;
    std::uint32_t type = 0;

    static constexpr qsizetype size = 14;
    bool isTrue() const { return magic == Header().magic && length <= SwayIpc::longestMessage; }

    QByteArray bytes() const {
        QByteArray all(magic.data(), magic.size());
        all.append(reinterpret_cast<const char *>(&length), sizeof length);
        return all.append(reinterpret_cast<const char *>(&type), sizeof type);
    }
    static Header of(const QByteArray &bytes) {
        Header header;
        const char *at = bytes.constData();
        std::memcpy(header.magic.data(), at, header.magic.size());
        std::memcpy(&header.length, at + header.magic.size(), sizeof header.length);
        std::memcpy(&header.type, at + header.magic.size() + sizeof header.length, sizeof header.type);
        return header;
    }
};

int connectTo(const QByteArray &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return -1;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return socket;
    ::close(socket);
    return -1;
}

} // namespace

std::unique_ptr<SwayIpc> SwayIpc::open() {
    const int socket = connectTo(qgetenv("SWAYSOCK"));
    return socket < 0 ? nullptr : std::unique_ptr<SwayIpc>(new SwayIpc(socket));
}

SwayIpc::SwayIpc(int socket) : socket_(socket), notifier_(socket, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
}

SwayIpc::~SwayIpc() {
    notifier_.setEnabled(false);
    ::close(socket_);
}

/// Our messages are short: a sway that takes none does not listen.
void SwayIpc::ask(Request request, const QByteArray &text, Answered answered) {
    if (!isAlive())
        return;
    Header header;
    header.length = static_cast<std::uint32_t>(text.size());
    header.type = static_cast<std::uint32_t>(request);
    const QByteArray message = header.bytes() + text;
    asked_.push_back(std::move(answered));
    if (::send(socket_, message.constData(), static_cast<std::size_t>(message.size()), MSG_NOSIGNAL) !=
        message.size())
        end();
}

void SwayIpc::awaitAnswers(std::chrono::milliseconds longest) {
    const QDeadlineTimer deadline(longest);
    pollfd socket{socket_, POLLIN, 0};
    while (isAlive() && !asked_.empty() && !deadline.hasExpired()) {
        if (::poll(&socket, 1, static_cast<int>(deadline.remainingTime())) > 0)
            read();
    }
}

/// A piece at a time, so that nobody holds us up by saying much.
void SwayIpc::read() {
    std::array<char, 65536> piece;
    const ssize_t length = ::recv(socket_, piece.data(), piece.size(), 0);
    if (length < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (length <= 0) {
        end();
        return;
    }
    received_.append(piece.data(), length);
    while (isAlive() && takeMessage()) {
    }
}

bool SwayIpc::takeMessage() {
    if (received_.size() < Header::size)
        return false;
    const Header header = Header::of(received_);
    if (!header.isTrue()) {
        end();
        return false;
    }
    if (received_.size() - Header::size < static_cast<qsizetype>(header.length))
        return false;
    const QByteArray text = received_.mid(Header::size, header.length);
    received_.remove(0, Header::size + static_cast<qsizetype>(header.length));
    handle(header.type, text);
    return true;
}

void SwayIpc::handle(std::uint32_t type, const QByteArray &text) {
    const QJsonDocument told = QJsonDocument::fromJson(text);
    if (type >= firstEvent) {
        if (handler_)
            handler_(static_cast<Event>(type), told);
        return;
    }
    if (asked_.empty()) {
        end();
        return;
    }
    const Answered answered = std::move(asked_.front());
    asked_.pop_front();
    if (answered)
        answered(told);
}

void SwayIpc::end() {
    notifier_.setEnabled(false);
    received_.clear();
    asked_.clear();
}

} // namespace pavonel
