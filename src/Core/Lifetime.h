#pragma once

#include <memory>
#include <utility>

namespace pavonel {

/// Held by an object whose callbacks others keep: what it guards does nothing once the object is gone. For
/// callbacks that run on the main thread, where the object ends.
class Lifetime {
public:
    /// Knows of the end without putting it off.
    class Watch {
    public:
        bool isOver() const { return token_.expired(); }

        /// The same callback; one that returns something returns a default value after the end.
        template <class Callback> auto guard(Callback callback) const {
            return [token = token_, callback = std::move(callback)](auto &&...arguments) {
                using Result = decltype(callback(std::forward<decltype(arguments)>(arguments)...));
                return token.expired() ? Result() : callback(std::forward<decltype(arguments)>(arguments)...);
            };
        }

    private:
        friend class Lifetime;
        explicit Watch(const std::shared_ptr<int> &token) : token_(token) {}

        std::weak_ptr<int> token_;
    };

    Lifetime() = default;
    Lifetime(const Lifetime &) = delete;
    Lifetime &operator=(const Lifetime &) = delete;

    Watch watch() const { return Watch(token_); }
    template <class Callback> auto guard(Callback callback) const {
        return watch().guard(std::move(callback));
    }

private:
    std::shared_ptr<int> token_ = std::make_shared<int>();
};

} // namespace pavonel
