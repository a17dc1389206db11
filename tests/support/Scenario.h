#pragma once

#include "Core/BreakController.h"
#include "support/FakePlatform.h"
#include "support/Printing.h"

#include <QStringList>

#include <array>

namespace pavonel::test {

/// All that a controller needs, fake.
inline BreakController::Services servicesOf(FakePlatform &platform) {
    return {*platform.mainLoop, platform, *platform.processes, *platform.sounds};
}

/// Writes down what a paired phone would be told.
struct FakeRelay final : BreakRelay {
    QStringList told;

    void breakStarted(BreakKind kind, const QString &title, Seconds duration) override {
        told.append(QStringLiteral("start %1 \"%2\" %3").arg(defaultTitle(kind), title).arg(duration));
    }
    void breakEnded() override { told.append(QStringLiteral("end")); }
};

/// A controller that runs over fakes and virtual time, and a record of everything that it calls, each line
/// with the seconds since the start: "1170 heads-up Micro break".
class Scenario {
public:
    /// Monday, 2 March 2026, 09:00 in the zone.
    explicit Scenario(const QByteArray &zoneId = "UTC");

    /// Over services that `furnish` puts in place of fakes.
    explicit Scenario(const std::function<void(FakePlatform &)> &furnish, const QByteArray &zoneId = "UTC");

    FakePlatform platform;
    Settings settings;
    Stats stats;
    FakeRelay relay;
    BreakController controller;
    QStringList events;

    /// Lets seconds pass; the controller ticks at the end of each.
    void advance(Seconds seconds);
    /// Up to a moment of the local clock, as "2026-03-09T12:00". What a tick does at that moment is done.
    void advanceTo(const QString &isoLocal);

    /// The seconds that have passed.
    Seconds elapsed() const { return elapsed_; }
    QString localTime() const;

    /// Only planned breaks from now on, without statistics of micro and long ones in between.
    void onlyPlannedBreaks();

    /// A record for every day of the week, appended to the list.
    PlannedBreak plan(int hour, int minute, Seconds duration = 60,
                      const QString &label = QStringLiteral("Lunch"));

    /// Brings the controller into a phase, from whichever it is in.
    void enter(Phase phase);

    /// Whether all that the controller tells of itself, and has told, fits its phase.
    bool isWhole() const;

    /// The lines of `events` that contain `text`.
    QStringList eventsWith(const QString &text) const { return events.filter(text); }

private:
    void record(const QString &event);

    Seconds elapsed_ = 0;
};

inline constexpr std::array everyPhase{Phase::counting, Phase::headsUp, Phase::breaking, Phase::paused};

/// The defaults, but nothing is ever looked at: no natural breaks and no holds.
void switchOffSensing(Settings &settings);

} // namespace pavonel::test
