#pragma once

#include "State.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <string>

namespace relay {

namespace net = boost::asio;

/// One phone that waits: what it has been told, and what it is to be told next, as server-sent events.
/// Of several changes that come while it is being told, only the last is left to tell.
class Subscriber {
public:
    Subscriber(const net::any_io_executor &executor, std::string phone, std::chrono::seconds heartbeat)
        : phone_(std::move(phone)), heartbeat_(heartbeat), wake_(executor) {}

    const std::string &phone() const { return phone_; }

    void offer(const PhoneState &state);
    void sendAway(); ///< To come back soon, perhaps to another instance.
    void hangUp();   ///< The phone is gone.

    /// What is to be written now; empty when there is nothing yet.
    std::string next();
    bool isOver() const { return over_; }
    bool isGone() const { return gone_; }
    net::awaitable<void> wait();

private:
    std::string news();
    bool hasEnded() const;
    std::chrono::steady_clock::time_point due() const;

    std::string phone_;
    std::chrono::seconds heartbeat_;
    net::steady_timer wake_;
    std::chrono::steady_clock::time_point lastWord_;
    PhoneState state_;
    std::int64_t toldVersion_ = 0;
    bool showsBreak_ = false; ///< On the phone, so far as it was told.
    bool sentAway_ = false;
    bool over_ = false; ///< Nothing more is to be told.
    bool gone_ = false;
};

} // namespace relay
