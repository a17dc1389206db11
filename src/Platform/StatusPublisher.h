#pragma once

#include <QString>

#include <optional>

namespace pavonel {

/// What other programs may know of the breaks, in words and whole seconds. Moments are in seconds since
/// 1970-01-01 00:00 UTC.
struct Status {
    /// What listeners are told of when it changes.
    struct Facts {
        struct Next {
            QString kind; ///< "micro", "long" or "planned".
            QString title;
            std::optional<qint64> due;       ///< Absent while something holds the timer,
            std::optional<qint64> remaining; ///< and then this says how much is left; absent otherwise.
            bool operator==(const Next &) const = default;
        };
        struct Running {
            QString kind;
            QString title;
            qint64 ends = 0;
            bool operator==(const Running &) const = default;
        };
        struct Counts {
            int micro = 0;
            int long_ = 0;
            int planned = 0;
            int skipped = 0;
            bool operator==(const Counts &) const = default;
        };

        QString phase; ///< "counting", "headsUp", "breaking" or "paused".
        QString
            hold; ///< "fullscreen", "audio", "microphone", "screenSharing", "deepFocus", "away"; empty: none.
        std::optional<Next> next; ///< Absent while a break runs, and when nothing is scheduled.
        std::optional<Running> running;
        std::optional<qint64> pauseEnds; ///< Absent while not paused, or paused until told.
        Counts today;
        bool operator==(const Facts &) const = default;
    };

    Facts facts;
    QString line; ///< For people. With the two below it passes with every second, and nobody is told.
    qint64 screenSeconds = 0; ///< Of today.
    qint64 breakSeconds = 0;
};

/// Why a wish of another program was not fulfilled; nothing has changed then.
struct Refusal {
    enum class Kind { badArgument, notNow };

    Kind kind;
    QString sentence;
};

/// What other programs may see and do.
class RemoteControl {
public:
    RemoteControl() = default;
    RemoteControl(const RemoteControl &) = delete;
    RemoteControl &operator=(const RemoteControl &) = delete;
    virtual ~RemoteControl() = default;

    virtual Status status() const = 0;

    /// Each yields nothing once it is done.
    using Outcome = std::optional<Refusal>;
    virtual Outcome takeMicroBreak() = 0;
    virtual Outcome takeLongBreak() = 0;
    virtual Outcome skip() = 0;
    virtual Outcome postpone(qint64 seconds) = 0;
    /// Without seconds, until told to resume.
    virtual Outcome pause(std::optional<qint64> seconds) = 0;
    virtual Outcome resume() = 0;
};

/// Where other programs reach the remote control.
class StatusPublisher {
public:
    StatusPublisher() = default;
    StatusPublisher(const StatusPublisher &) = delete;
    StatusPublisher &operator=(const StatusPublisher &) = delete;
    virtual ~StatusPublisher() = default;

    /// From now on until null is given. Before and after, other programs are told that nothing can be done.
    virtual void serve(RemoteControl *control) = 0;

    /// The facts of the status have changed: tells those who listen.
    virtual void tellChange() = 0;
};

} // namespace pavonel
