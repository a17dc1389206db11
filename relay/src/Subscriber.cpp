#include "Subscriber.h"

#include "Clock.h"

#include <algorithm>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <nlohmann/json.hpp>
#include <random>

namespace relay {

namespace {

std::string event(const char *name, const nlohmann::ordered_json &data) {
    return std::string("event: ") + name + "\ndata: " + data.dump() + "\n\n";
}

std::string breakEvent(const Break &current, std::int64_t now) {
    return event("break", {{"kind", current.kind},
                           {"title", current.title},
                           {"seconds", current.seconds},
                           {"endsAt", current.endsAt},
                           {"now", now}});
}

/// Not all at the same moment.
std::string comeBack() {
    static std::mt19937 generator{std::random_device{}()};
    constexpr int soonest = 100;
    constexpr int latest = 2000;
    const int wait = std::uniform_int_distribution(soonest, latest)(generator);
    return "retry: " + std::to_string(wait) + "\nevent: restart\ndata: {\"after\":" + std::to_string(wait) +
           "}\n\n";
}

} // namespace

void Subscriber::offer(const PhoneState &state) {
    if (state.version <= state_.version)
        return;
    state_ = state;
    wake_.cancel();
}

void Subscriber::sendAway() {
    sentAway_ = true;
    wake_.cancel();
}

void Subscriber::hangUp() {
    gone_ = true;
    over_ = true;
    wake_.cancel();
}

bool Subscriber::hasEnded() const {
    return !state_.current || state_.current->endsAt <= nowMilliseconds();
}

std::string Subscriber::next() {
    if (over_)
        return {};
    std::string text = news();
    const auto now = std::chrono::steady_clock::now();
    if (text.empty() && now >= lastWord_ + heartbeat_)
        text = ":\n\n";
    if (!text.empty())
        lastWord_ = now;
    return text;
}

std::string Subscriber::news() {
    const bool isNew = state_.version != toldVersion_;
    const bool first = toldVersion_ == 0;
    toldVersion_ = state_.version;
    if (isNew && state_.version == PhoneState::unpaired) {
        over_ = true;
        return event("unpaired", nlohmann::ordered_json::object());
    }
    if (isNew && !hasEnded()) {
        showsBreak_ = true;
        return breakEvent(*state_.current, nowMilliseconds());
    }
    if ((isNew && first) || (showsBreak_ && hasEnded())) {
        showsBreak_ = false;
        return event("clear", nlohmann::ordered_json::object());
    }
    if (!sentAway_)
        return {};
    over_ = true;
    return comeBack();
}

std::chrono::steady_clock::time_point Subscriber::due() const {
    const auto heartbeat = lastWord_ + heartbeat_;
    if (!showsBreak_)
        return heartbeat;
    const auto left = std::chrono::milliseconds(state_.current->endsAt - nowMilliseconds());
    return std::min(heartbeat, std::chrono::steady_clock::now() + left);
}

net::awaitable<void> Subscriber::wait() {
    wake_.expires_at(over_ ? std::chrono::steady_clock::time_point::max() : due());
    boost::system::error_code woken;
    co_await wake_.async_wait(net::redirect_error(net::use_awaitable, woken));
}

} // namespace relay
