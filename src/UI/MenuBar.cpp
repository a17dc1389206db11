#include "UI/MenuBar.h"

#include "Core/ClockText.h"
#include "Core/LocalDay.h"
#include "Core/StatusLine.h"
#include "UI/Symbol.h"

#include <cmath>
#include <utility>

namespace pavonel {

namespace {

constexpr Seconds refreshInterval = 1.0;
constexpr Seconds minute = 60;

const QString mark = QStringLiteral("menubar");

QString symbolOf(PauseReason reason) {
    switch (reason) {
    case PauseReason::fullscreen:
        return QStringLiteral("arrow.up.left.and.arrow.down.right");
    case PauseReason::audio:
        return QStringLiteral("speaker.wave.2");
    case PauseReason::microphone:
        return QStringLiteral("mic");
    case PauseReason::screenSharing:
        return QStringLiteral("record.circle");
    case PauseReason::deepFocus:
        return QStringLiteral("brain.head.profile");
    }
    return {};
}

std::vector<QImage> images(const QString &name) {
    constexpr qreal points = 18;
    std::vector<QImage> sizes;
    for (const int scale : {1, 2}) {
        QImage image =
            name == mark ? Symbol::mark(Qt::black, scale) : Symbol::image(name, points, Qt::black, scale);
        if (!image.isNull())
            sizes.push_back(std::move(image));
    }
    return sizes;
}

MenuItem label(const QString &title) {
    return {MenuItem::Kind::label, title, {}, {}, {}};
}

MenuItem separator() {
    return {MenuItem::Kind::separator, {}, {}, {}, {}};
}

} // namespace

QString shortRemainingTime(Seconds remaining) {
    if (remaining < minute)
        return QString::number(static_cast<qint64>(remaining)) + u's';
    constexpr Seconds longest = 1e12; // what settings may hold by mistake
    return QString::number(static_cast<qint64>(std::min(remaining, longest) / minute) + 1) + u'm';
}

MenuBarController::MenuBarController(StatusItem &statusItem, MainLoop &loop, BreakController &controller,
                                     const Settings &settings, const Stats &stats,
                                     std::function<void()> onSettings)
    : statusItem_(statusItem), loop_(loop), controller_(controller), settings_(settings), stats_(stats),
      onSettings_(std::move(onSettings)) {
    statusItem_.setMenu(lifetime_.guard([this] { return menu(); }));
    refreshTimer_ = loop_.everyDeferrable(refreshInterval, {[this] {
                                              refresh();
                                              return steadyRefreshes();
                                          }});
    refresh();
}

void MenuBarController::refresh() {
    const Face wanted = face();
    if (wanted == shown_)
        return;
    shown_ = wanted;
    if (const QString icon = iconOf(wanted); icon != std::exchange(icon_, icon))
        statusItem_.setIcon(icon, images(icon));
    if (const QString title = titleOf(wanted); title != std::exchange(title_, title))
        statusItem_.setTitle(title);
}

/// How many of the next times the title stays as it is while seconds are counted.
int MenuBarController::steadyRefreshes() const {
    const auto next = controller_.next();
    if (!next)
        return MainLoop::unlimited;
    return next->remaining < minute ? 0 : static_cast<int>(std::fmod(next->remaining, minute));
}

MenuBarController::Face MenuBarController::face() const {
    if (controller_.phase == Phase::breaking)
        return {Phase::breaking, {}, controller_.breakRemaining};
    if (controller_.phase == Phase::paused)
        return {Phase::paused, {}, {}};
    if (const auto &reason = controller_.pauseReason.get())
        return {Phase::counting, reason, {}};
    const auto next = controller_.next();
    if (!next)
        return {};
    const Seconds unit = next->remaining < minute ? 1 : minute;
    return {Phase::counting, {}, std::floor(next->remaining / unit) * unit};
}

QString MenuBarController::iconOf(const Face &face) {
    if (face.phase == Phase::breaking)
        return QStringLiteral("cup.and.saucer");
    if (face.phase == Phase::paused)
        return QStringLiteral("pause.circle");
    return face.held ? symbolOf(*face.held) : mark;
}

QString MenuBarController::titleOf(const Face &face) {
    if (!face.left)
        return {};
    return face.phase == Phase::breaking ? clockText(*face.left) : shortRemainingTime(*face.left);
}

Menu MenuBarController::menu() {
    Menu menu;
    menu.push_back(label(statusLine(controller_, loop_)));
    menu.push_back(separator());
    menu.push_back(item(QStringLiteral("Take a micro break"), QStringLiteral("b"), [this] {
        controller_.startBreak(BreakKind::micro, BreakController::Initiator::user);
    }));
    menu.push_back(item(QStringLiteral("Take a long break"), QStringLiteral("l"), [this] {
        controller_.startBreak(BreakKind::long_, BreakController::Initiator::user);
    }));
    if (settings_.isSkipPermitted())
        menu.push_back(
            item(QStringLiteral("Skip next break"), QStringLiteral("s"), [this] { controller_.skip(); }));
    menu.push_back(separator());
    if (controller_.phase == Phase::paused)
        menu.push_back(item(QStringLiteral("Resume"), {}, [this] { controller_.resume(); }));
    else
        menu.push_back({MenuItem::Kind::submenu, QStringLiteral("Pause"), {}, {}, pauseMenu()});
    menu.push_back(item(QStringLiteral("Reset timers"), {}, [this] { controller_.resetTimers(); }));
    menu.push_back(separator());
    menu.push_back(label(todayLine()));
    menu.push_back(separator());
    menu.push_back(item(QStringLiteral("Settings…"), QStringLiteral(","), [this] { onSettings_(); }));
    menu.push_back(item(QStringLiteral("Quit Pavonel"), QStringLiteral("q"), [this] { loop_.quit(0); }));
    return menu;
}

Menu MenuBarController::pauseMenu() {
    const auto pausing = [this](const QString &title, Seconds seconds) {
        return item(title, {}, [this, seconds] { controller_.pause(seconds); });
    };
    Menu menu;
    menu.push_back(pausing(QStringLiteral("15 minutes"), 900));
    menu.push_back(pausing(QStringLiteral("30 minutes"), 1800));
    menu.push_back(pausing(QStringLiteral("1 hour"), 3600));
    menu.push_back(
        item(QStringLiteral("Until tomorrow"), {}, [this] { controller_.pause(untilTomorrow()); }));
    menu.push_back(separator());
    menu.push_back(item(QStringLiteral("Indefinitely"), {}, [this] { controller_.pause(); }));
    return menu;
}

MenuItem MenuBarController::item(const QString &title, const QString &key, std::function<void()> action) {
    return {MenuItem::Kind::command, title, key, lifetime_.guard(std::move(action)), {}};
}

Seconds MenuBarController::untilTomorrow() const {
    const Instant now = loop_.now();
    return secondsBetween(now, LocalDay::containing(now, loop_.zone()).end);
}

QString MenuBarController::todayLine() const {
    const Day today = stats_.today();
    return QStringLiteral("Today: %1 breaks · %2 skipped").arg(today.micro + today.long_).arg(today.skipped);
}

} // namespace pavonel
