#pragma once

#include "Platform/Linux/Applications/FrontWindow.h"
#include "Platform/Qt/FolderChanges.h"

#include <chrono>
#include <memory>

namespace pavonel {

/// Screen casts of the desktop portal: each is a source of video in PipeWire that is no camera and runs while
/// somebody looks at it. PipeWire tells of changes, so a question only reads memory; the first one connects.
/// Without PipeWire there are none.
class PipeWireScreenCasts final : public ScreenCasts {
public:
    PipeWireScreenCasts();
    ~PipeWireScreenCasts() override;

    bool anyLive() override;

private:
    class Connection;
    using Clock = std::chrono::steady_clock;

    void connectIfDue();

    std::unique_ptr<Connection> connection_;
    Clock::duration pause_ = shortestPause;
    Clock::time_point nextAttempt_;
    FolderChanges changes_; ///< Around the server's socket.
    bool isThere_ = false;  ///< The socket.

    static constexpr std::chrono::seconds shortestPause{1};
    static constexpr std::chrono::seconds longestPause{60};
};

} // namespace pavonel
