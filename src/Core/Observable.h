#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace pavonel {

/// Something whose fields others watch. A notice comes before each change, so that observers only note that
/// they must read again; they read once the change is made.
class Observable {
public:
    using Notice = std::function<void()>;
    /// Observing lasts as long as this handle.
    using Observation = std::shared_ptr<Notice>;

    Observable() = default;
    Observable(const Observable &) = delete;
    Observable &operator=(const Observable &) = delete;

    [[nodiscard]] Observation observe(Notice willChange) {
        auto observation = std::make_shared<Notice>(std::move(willChange));
        observers_.push_back(observation);
        return observation;
    }

protected:
    ~Observable() = default;

    void announceChange() {
        if (notices_ == 0)
            std::erase_if(observers_, [](const auto &observer) { return observer.expired(); });
        ++notices_;
        // An observer may come or go, or change another field, while the others are told.
        for (std::size_t i = 0; i < observers_.size(); ++i) {
            if (const auto observer = observers_[i].lock())
                (*observer)();
        }
        --notices_;
    }

private:
    template <class> friend class Published;

    std::vector<std::weak_ptr<Notice>> observers_;
    int notices_ = 0; ///< Under way, one within the other.
};

/// An observable field: reads like its value, and assigning to it tells the owner's observers first.
template <class T> class Published {
public:
    Published(Observable &owner, T initial) : owner_(owner), value_(std::move(initial)) {}
    Published(const Published &) = delete;
    Published &operator=(const Published &) = delete;
    ~Published() = default;

    Published &operator=(T value) {
        owner_.announceChange();
        value_ = std::move(value);
        ++version_;
        return *this;
    }

    const T &get() const { return value_; }
    operator const T &() const { return value_; }
    const T *operator->() const { return &value_; }

    /// Grows with every assignment; lets a cache see that it is stale.
    unsigned version() const { return version_; }

private:
    Observable &owner_;
    T value_;
    unsigned version_ = 0;
};

} // namespace pavonel
