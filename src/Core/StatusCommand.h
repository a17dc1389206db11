#pragma once

#include "Platform/MainLoop.h"
#include "Platform/RunningPavonel.h"

#include <functional>

namespace pavonel {

/// One line of JSON; docs/bus.md names its members.
QString statusJson(const Status &status, Instant now);

/// Tells on the command line what goes on in the Pavonel that runs.
class StatusCommand {
public:
    enum class Form { line, json };
    /// False when the line could not be written.
    using Print = std::function<bool(const QString &line)>;

    static constexpr int notRunning = 3;

    /// Everything given must outlive this.
    StatusCommand(MainLoop &loop, RunningPavonel &running, Form form, Print print, Print complain);

    /// Prints the status and gives the exit status.
    int tell();

    /// Prints the status now and whenever it changes. Ends the main loop when there is no Pavonel any more or
    /// nobody reads.
    void follow();

private:
    int print(const Status &status);
    int print(RunningPavonel::Failure failure);
    void tellChange();

    MainLoop &loop_;
    RunningPavonel &running_;
    Form form_;
    Print print_;
    Print complain_;
    std::optional<Status::Facts> told_;
};

} // namespace pavonel
