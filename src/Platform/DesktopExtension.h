#pragma once

#include "Platform/Service.h"

#include <functional>

namespace pavonel {

/// Our extension of the desktop's own shell, which tells us what the desktop keeps from programs.
class DesktopExtension : public Service {
public:
    /// Whether this desktop takes such extensions. Where it does, `limitation` says why ours cannot be
    /// switched now. Has the desktop asked how ours is.
    virtual bool isPossible() = 0;

    /// As the desktop last told, or as it was last put.
    virtual bool isOn() const = 0;

    /// The desktop does so a moment later, and keeps it so when we end.
    virtual void setOn(bool on) = 0;

    /// Called whenever `isOn` or `limitation` has become another. One listener; an empty one ends that.
    virtual void onChange(std::function<void()> changed) = 0;
};

} // namespace pavonel
