#pragma once

#include "Platform/MainLoop.h"

#include <QObject>

namespace pavonel {

/// Gives the memory of the program's code back to the system when a window has gone: most of that code only
/// shows windows, and what counts time in between is little.
class CodeReturn final : public QObject {
public:
    /// Needs the application object.
    explicit CodeReturn(MainLoop &loop);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    MainLoop &loop_;
    TimerHandle pause_; ///< For windows that go together, and what comes with their end.
};

} // namespace pavonel
