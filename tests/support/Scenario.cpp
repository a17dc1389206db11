#include "support/Scenario.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

BreakController::Services furnished(FakePlatform &platform,
                                    const std::function<void(FakePlatform &)> &furnish) {
    furnish(platform);
    return servicesOf(platform);
}

} // namespace

Scenario::Scenario(const QByteArray &zoneId) : Scenario([](FakePlatform &) {}, zoneId) {}

Scenario::Scenario(const std::function<void(FakePlatform &)> &furnish, const QByteArray &zoneId)
    : platform(zoneId), settings(platform.fakeDefaults, platform.loop),
      stats(platform.fakeDefaults, platform.loop),
      controller(furnished(platform, furnish), settings, stats, &relay) {
    controller.onHeadsUp = [this](BreakKind, const QString &title) {
        record(QStringLiteral("heads-up ") + title);
    };
    controller.onHeadsUpDismiss = [this] { record(QStringLiteral("heads-up withdrawn")); };
    controller.onBreakStart = [this](BreakKind) { record(QStringLiteral("start ") + controller.breakTitle); };
    controller.onBreakEnd = [this] { record(QStringLiteral("end")); };
    controller.onWellness = [this](const QString &message, const QString &icon) {
        record(QStringLiteral("wellness %1 [%2]").arg(message, icon));
    };
    controller.start();
}

void Scenario::record(const QString &event) {
    events.append(QStringLiteral("%1 %2").arg(elapsed_).arg(event));
}

void Scenario::advance(Seconds seconds) {
    for (Seconds passed = 0; passed < seconds; ++passed) {
        const Seconds step = std::min(1.0, seconds - passed);
        elapsed_ += step;
        platform.loop.advance(step);
    }
}

void Scenario::advanceTo(const QString &isoLocal) {
    advance(secondsBetween(platform.loop.now(), platform.loop.at(isoLocal)));
}

QString Scenario::localTime() const {
    const Seconds now = platform.loop.now().time_since_epoch().count();
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(now * 1000), platform.loop.zone())
        .toString(u"yyyy-MM-dd HH:mm:ss");
}

void Scenario::onlyPlannedBreaks() {
    settings.microEnabled = false;
    settings.longEnabled = false;
    settings.postureEnabled = false;
}

PlannedBreak Scenario::plan(int hour, int minute, Seconds duration, const QString &label) {
    PlannedBreak record;
    record.label = label;
    record.hour = hour;
    record.minute = minute;
    record.duration = duration;
    record.weekdays = {1, 2, 3, 4, 5, 6, 7};
    PlannedBreaks records = settings.plannedBreaks;
    records.push_back(record);
    settings.plannedBreaks = records;
    return record;
}

void Scenario::enter(Phase phase) {
    controller.resume();
    controller.endBreak(BreakController::Ending::cutShort);
    controller.dismissHeadsUp();
    controller.microElapsed = 0;
    controller.longElapsed = 0;
    switch (phase) {
    case Phase::counting:
        break;
    case Phase::headsUp:
        controller.microElapsed = settings.microInterval - settings.preNotifySeconds;
        advance(1);
        break;
    case Phase::breaking:
        controller.startBreak(BreakKind::long_, BreakController::Initiator::user);
        break;
    case Phase::paused:
        controller.pause(3600);
        break;
    }
    EXPECT_EQ(controller.phase, phase);
}

bool Scenario::isWhole() const {
    const bool breaks = controller.phase == Phase::breaking;
    const auto times = [this](const char *what) { return eventsWith(QString::fromLatin1(what)).size(); };
    const auto withdrawn = times(" heads-up withdrawn");
    return controller.currentBreak.get().has_value() == breaks &&
           (!controller.pauseUntil.get() || controller.phase == Phase::paused) &&
           times(" heads-up ") - 2 * withdrawn == (controller.phase == Phase::headsUp ? 1 : 0) &&
           times(" start ") - times(" end") == (breaks ? 1 : 0);
}

void switchOffSensing(Settings &settings) {
    settings.naturalBreakEnabled = false;
    settings.pauseOnFullscreen = false;
    settings.pauseOnAudio = false;
    settings.pauseOnMicrophone = false;
    settings.pauseOnScreenSharing = false;
    settings.deepFocusApps = QStringList();
}

} // namespace pavonel::test
