#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <unordered_map>

namespace relay {

/// So many events a time for each address: a bucket that fills by `perSecond` and holds at most `burst`.
class RateLimit {
public:
    RateLimit(double perSecond, double burst) : perSecond_(perSecond), burst_(burst) {}

    /// Whether one more is within the limit; counts it when it is.
    bool admit(const std::string &address);

private:
    using Clock = std::chrono::steady_clock;
    struct Bucket {
        double left;
        Clock::time_point at;
    };

    double filled(const Bucket &bucket, Clock::time_point now) const;
    void forgetFull(Clock::time_point now);

    double perSecond_;
    double burst_;
    std::unordered_map<std::string, Bucket> buckets_;
    std::size_t worthCleaning_ = 1024;
};

/// How many connections stand, of each address and in all.
class ConnectionLimit {
public:
    ConnectionLimit(int overall, int perAddress) : overall_(overall), perAddress_(perAddress) {}

    /// Holds a place until it is gone.
    class Place {
    public:
        Place() = default;
        Place(ConnectionLimit &limit, std::string address) : limit_(&limit), address_(std::move(address)) {}
        Place(Place &&other) noexcept
            : limit_(std::exchange(other.limit_, nullptr)), address_(std::move(other.address_)) {}
        Place &operator=(Place &&) = delete;
        ~Place() {
            if (limit_)
                limit_->leave(address_);
        }
        explicit operator bool() const { return limit_ != nullptr; }

    private:
        ConnectionLimit *limit_ = nullptr;
        std::string address_;
    };

    /// `counted` is false for a proxy, whose many connections are other people's.
    Place enter(const std::string &address, bool counted);
    int standing() const { return standing_; }

private:
    void leave(const std::string &address);

    int overall_;
    int perAddress_;
    int standing_ = 0;
    std::unordered_map<std::string, int> of_;
};

} // namespace relay
