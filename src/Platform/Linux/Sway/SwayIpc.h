#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QSocketNotifier>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

namespace pavonel {

/// A connection to sway on the socket that it names in the environment of its programs. Nobody waits for an
/// answer. When sway is gone, or says what makes no sense, the connection ends and does not come back.
class SwayIpc {
public:
    /// Null where there is no sway.
    static std::unique_ptr<SwayIpc> open();

    SwayIpc(const SwayIpc &) = delete;
    SwayIpc &operator=(const SwayIpc &) = delete;
    ~SwayIpc();

    enum class Request : std::uint32_t { runCommand = 0, subscribe = 2, getTree = 4, getConfig = 9 };
    using Answered = std::function<void(const QJsonDocument &)>;
    void ask(Request request, const QByteArray &text = {}, Answered answered = {});

    /// Sway's numbers of them.
    enum class Event : std::uint32_t { workspace = 0x80000000, window = 0x80000003, binding = 0x80000005 };
    void onEvent(std::function<void(Event, const QJsonDocument &)> handler) { handler_ = std::move(handler); }

    /// Until all questions are answered, or for this long.
    void awaitAnswers(std::chrono::milliseconds longest);

    bool isAlive() const { return notifier_.isEnabled(); }

    /// In bytes. The windows of a busy desktop take some hundred thousand.
    static constexpr std::uint32_t longestMessage = 4 * 1024 * 1024;

private:
    explicit SwayIpc(int socket);

    void read();
    bool takeMessage();
    void handle(std::uint32_t type, const QByteArray &text);
    void end();

    int socket_;
    QSocketNotifier notifier_;
    QByteArray received_;
    std::deque<Answered> asked_; ///< Answers come in the order of the questions.
    std::function<void(Event, const QJsonDocument &)> handler_;
};

} // namespace pavonel
