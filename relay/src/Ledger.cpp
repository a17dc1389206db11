#include "Ledger.h"

namespace relay {

bool Ledger::add(const std::shared_ptr<Waiter> &waiter) {
    constexpr std::size_t tabs = 8; // of one browser, and what it left behind
    if (waiters_.count(waiter->phone()) >= tabs)
        return false;
    waiters_.emplace(waiter->phone(), waiter);
    ++metrics.phones;
    if (draining_)
        waiter->sendAway();
    return true;
}

void Ledger::remove(const std::shared_ptr<Waiter> &waiter) {
    const auto [first, last] = waiters_.equal_range(waiter->phone());
    for (auto entry = first; entry != last; ++entry) {
        if (entry->second == waiter) {
            waiters_.erase(entry);
            --metrics.phones;
            return;
        }
    }
}

void Ledger::tell(const Change &change) {
    const auto [first, last] = waiters_.equal_range(change.phone);
    for (auto entry = first; entry != last; ++entry)
        entry->second->offer(change.state);
}

std::vector<std::string> Ledger::phones() const {
    std::vector<std::string> phones;
    phones.reserve(waiters_.size());
    for (const auto &[phone, waiter] : waiters_)
        phones.push_back(phone);
    return phones;
}

void Ledger::drain() {
    draining_ = true;
    for (const auto &[phone, waiter] : waiters_)
        waiter->sendAway();
}

} // namespace relay
