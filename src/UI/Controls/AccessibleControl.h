#pragma once

class QAccessibleInterface;

namespace pavonel {

/// Mixed into a widget that tells assistive technology itself what it is.
class AccessibleControl {
public:
    AccessibleControl();
    AccessibleControl(const AccessibleControl &) = delete;
    AccessibleControl &operator=(const AccessibleControl &) = delete;

    /// A new one, which the caller owns.
    virtual QAccessibleInterface *makeAccessible() = 0;

protected:
    ~AccessibleControl() = default;
};

} // namespace pavonel
