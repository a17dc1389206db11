#pragma once

#include "Platform/Applications.h"

#include <cstdint>

namespace pavonel {

/// The window that the user works in, as the window system tells of it.
struct FrontWindow {
    std::uint64_t window = 0; ///< Any number that no other window has.
    ProcessId processId = 0;  ///< 0 where it is not told.
    QString windowClass;      ///< Of WM_CLASS, or the application id of Wayland.
    QString windowInstance;   ///< Of WM_CLASS; empty on Wayland.

    bool operator==(const FrontWindow &) const = default;
};

class FrontWindowSource {
public:
    FrontWindowSource() = default;
    FrontWindowSource(const FrontWindowSource &) = delete;
    FrontWindowSource &operator=(const FrontWindowSource &) = delete;
    virtual ~FrontWindowSource() = default;

    /// Absent when no window is in front, or one of our own.
    virtual std::optional<FrontWindow> frontWindow() = 0;

    /// Like `Service::limitation`.
    virtual QString limitation() const = 0;
};

/// Live pictures of the screen that other programs take through the desktop.
class ScreenCasts {
public:
    ScreenCasts() = default;
    ScreenCasts(const ScreenCasts &) = delete;
    ScreenCasts &operator=(const ScreenCasts &) = delete;
    virtual ~ScreenCasts() = default;

    virtual bool anyLive() = 0;
};

} // namespace pavonel
