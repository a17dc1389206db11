#include "Limits.h"

#include <algorithm>

namespace relay {

double RateLimit::filled(const Bucket &bucket, Clock::time_point now) const {
    const double seconds = std::chrono::duration<double>(now - bucket.at).count();
    return std::min(burst_, bucket.left + seconds * perSecond_);
}

bool RateLimit::admit(const std::string &address) {
    const auto now = Clock::now();
    if (buckets_.size() >= worthCleaning_)
        forgetFull(now);
    Bucket &bucket = buckets_.try_emplace(address, Bucket{burst_, now}).first->second;
    bucket = {filled(bucket, now), now};
    if (bucket.left < 1)
        return false;
    bucket.left -= 1;
    return true;
}

/// A full bucket is as good as none. When none is full, there are as many attackers, and all begin anew.
void RateLimit::forgetFull(Clock::time_point now) {
    constexpr std::size_t most = 100'000;
    std::erase_if(buckets_, [&](const auto &entry) { return filled(entry.second, now) >= burst_; });
    if (buckets_.size() >= most)
        buckets_.clear();
    worthCleaning_ = std::min(most, 2 * buckets_.size() + 1024);
}

ConnectionLimit::Place ConnectionLimit::enter(const std::string &address, bool counted) {
    if (standing_ >= overall_)
        return {};
    const std::string name = counted ? address : std::string();
    int &count = of_[name];
    if (counted && count >= perAddress_)
        return {};
    ++count;
    ++standing_;
    return {*this, name};
}

void ConnectionLimit::leave(const std::string &address) {
    --standing_;
    if (--of_[address] == 0)
        of_.erase(address);
}

} // namespace relay
