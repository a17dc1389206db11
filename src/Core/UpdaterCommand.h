#pragma once

#include "Core/Updater.h"
#include "Platform/MainLoop.h"

#include <functional>

namespace pavonel {

/// Updates from the command line: checks, installs what is newer and tells of it line by line. Its end is
/// that of the main loop.
class UpdaterCommand {
public:
    using Print = std::function<void(const QString &line)>;

    /// Both must outlive this.
    UpdaterCommand(MainLoop &loop, Updater &updater, Print print);

    void start();

    /// To be called after the main loop has ended: tells what came between the last look and the end.
    void finish();

    /// Whether the program then starts as ever: the new version was told to be staged, but could not be
    /// handed over to, so that nothing waits for our end.
    bool isToStart() const { return isToStart_; }

private:
    void poll();
    void report(const Updater::Available &offer);
    void report(const Updater::Failed &failure);
    void report(const Updater::UpToDate &);
    void report(const Updater::ReadyToRestart &);
    template <class Underway> void report(const Underway &) {}

    void print(const QString &line) const;
    void end(int status);

    MainLoop &loop_;
    Updater &updater_;
    Print print_;
    TimerHandle polling_; ///< Absent when there is nothing more to wait for.
    int polls_ = 0;
    Observable::Observation change_; ///< Of the state, once staged.
    bool isToStart_ = false;
};

} // namespace pavonel
