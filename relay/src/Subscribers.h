#pragma once

#include "Limits.h"
#include "Metrics.h"
#include "State.h"
#include "Subscriber.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace relay {

/// Who waits. Outlives every connection; used by one thread.
class Subscribers {
public:
    Subscribers(int most, int mostPerAddress) : connections(most, mostPerAddress) {}

    /// A phone waits from `add` until `remove`. A phone that waits often already is not added.
    bool add(const std::shared_ptr<Subscriber> &subscriber);
    void remove(const std::shared_ptr<Subscriber> &subscriber);

    void tell(const Change &change);
    std::vector<std::string> phones() const;

    /// Sends every phone away, and those that still come.
    void drain();
    bool isDraining() const { return draining_; }
    bool isEmpty() const { return subscribers_.empty() && answering == 0; }

    Metrics metrics;
    ConnectionLimit connections;
    int answering = 0; ///< Requests that are not yet answered.

private:
    std::unordered_multimap<std::string, std::shared_ptr<Subscriber>> subscribers_;
    bool draining_ = false;
};

} // namespace relay
