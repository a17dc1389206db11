#pragma once

#include "Platform/Service.h"

#include <functional>
#include <memory>

namespace pavonel {

class StatusPublisher;

/// What other programs can have this one do.
enum class OutsideAction { takeMicroBreak, takeLongBreak, skip, togglePause };

/// Sees to it that one Pavonel runs for a user, and lets others reach it. All handlers run on the main
/// thread; what comes before there is a handler waits for it.
class SingleInstance : public Service {
public:
    enum class Role {
        first,         ///< From now on until this object goes, later ones find us.
        later,         ///< Another one runs and has been told that the user wants it.
        laterUnreached ///< Another one runs, but cannot be told.
    };

    /// Comes before anything of the user's is read or written.
    virtual Role claim() = 0;

    /// The user opened the program again.
    virtual void onReopen(std::function<void()> reopen) = 0;
    virtual void onAction(std::function<void(OutsideAction)> act) = 0;

    /// `then` runs once all calls have been passed on that came while this program started.
    virtual void afterWaitingCalls(std::function<void()> then) = 0;

    /// Where others learn what goes on here. It goes with this object.
    virtual StatusPublisher &publisher() = 0;
};

/// This system's answer. Needs the application object.
std::unique_ptr<SingleInstance> makeSingleInstance();

} // namespace pavonel
