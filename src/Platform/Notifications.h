#pragma once

#include "Platform/Service.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace pavonel {

/// Notices that the desktop shows in its own way, for where it does not let us put windows of ours in place.
class Notifications : public Service {
public:
    struct Button {
        QString label;
        std::function<void()> action; ///< May take the notice away.
    };
    struct Notice {
        QString title;
        QString text = {};
        std::vector<Button> buttons = {};
    };

    /// Destroying it takes the notice away.
    class Shown {
    public:
        Shown() = default;
        Shown(const Shown &) = delete;
        Shown &operator=(const Shown &) = delete;
        virtual ~Shown() = default;
    };

    [[nodiscard]] virtual std::unique_ptr<Shown> show(Notice notice) = 0;
};

} // namespace pavonel
