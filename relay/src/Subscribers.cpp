#include "Subscribers.h"

namespace relay {

bool Subscribers::add(const std::shared_ptr<Subscriber> &subscriber) {
    constexpr std::size_t tabs = 8; // of one browser, and what it left behind
    if (subscribers_.count(subscriber->phone()) >= tabs)
        return false;
    subscribers_.emplace(subscriber->phone(), subscriber);
    ++metrics.phones;
    if (draining_)
        subscriber->sendAway();
    return true;
}

void Subscribers::remove(const std::shared_ptr<Subscriber> &subscriber) {
    const auto [first, last] = subscribers_.equal_range(subscriber->phone());
    for (auto entry = first; entry != last; ++entry) {
        if (entry->second == subscriber) {
            subscribers_.erase(entry);
            --metrics.phones;
            return;
        }
    }
}

void Subscribers::tell(const Change &change) {
    const auto [first, last] = subscribers_.equal_range(change.phone);
    for (auto entry = first; entry != last; ++entry)
        entry->second->offer(change.state);
}

std::vector<std::string> Subscribers::phones() const {
    std::vector<std::string> phones;
    phones.reserve(subscribers_.size());
    for (const auto &[phone, subscriber] : subscribers_)
        phones.push_back(phone);
    return phones;
}

void Subscribers::drain() {
    draining_ = true;
    for (const auto &[phone, subscriber] : subscribers_)
        subscriber->sendAway();
}

} // namespace relay
