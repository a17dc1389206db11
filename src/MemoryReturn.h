#pragma once

#include "Platform/MainLoop.h"

#include <QObject>

namespace pavonel {

/// Gives memory back to the system when a window has gone: what is free in the heap, and that of the
/// program's code, most of which only shows windows; what counts time in between is little.
class MemoryReturn final : public QObject {
public:
    /// Needs the application object.
    explicit MemoryReturn(MainLoop &loop);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    MainLoop &loop_;
    TimerHandle pause_; ///< For windows that go together, and what comes with their end.
};

} // namespace pavonel
