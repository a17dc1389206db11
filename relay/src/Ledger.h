#pragma once

#include "Limits.h"
#include "Metrics.h"
#include "State.h"
#include "Waiter.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace relay {

/// Who waits. Outlives every connection; used by one thread.
class Ledger {
public:
    Ledger(int most, int mostPerAddress) : connections(most, mostPerAddress) {}

    /// A phone waits from `add` until `remove`. A phone that waits often already is not added.
    bool add(const std::shared_ptr<Waiter> &waiter);
    void remove(const std::shared_ptr<Waiter> &waiter);

    void tell(const Change &change);
    std::vector<std::string> phones() const;

    /// Sends every phone away, and those that still come.
    void drain();
    bool isDraining() const { return draining_; }
    bool isEmpty() const { return waiters_.empty() && answering == 0; }

    Metrics metrics;
    ConnectionLimit connections;
    int answering = 0; ///< Requests that are not yet answered.

private:
    std::unordered_multimap<std::string, std::shared_ptr<Waiter>> waiters_;
    bool draining_ = false;
};

} // namespace relay
