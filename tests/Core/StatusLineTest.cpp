#include "Core/StatusLine.h"

#include "support/Printing.h"
#include "support/Scenario.h"

#include <QLocale>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

QString text(const char *utf8) {
    return QString::fromUtf8(utf8);
}

} // namespace

TEST(StatusLine, says_what_is_going_on) {
    FakePlatform platform;
    Settings settings{*platform.defaults, *platform.mainLoop};
    Stats stats{*platform.defaults, *platform.mainLoop};
    BreakController controller{servicesOf(platform), settings, stats};
    const QString pauseEnd = QLocale().toString(QTime(9, 15), QLocale::ShortFormat);
    const struct {
        QString line;
        std::function<void()> state;
    } table[] = {
        {text("Micro break: 20:00"), [] {}},
        {text("Long break: 1:00"), [&] { controller.longElapsed = 3540; }},
        {text("No break scheduled"), [&] { settings.microEnabled = false, settings.longEnabled = false; }},
        {text("Waiting · Fullscreen app"), [&] { controller.pauseReason = PauseReason::fullscreen; }},
        {text("Waiting · Video or audio playing"), [&] { controller.pauseReason = PauseReason::audio; }},
        {text("Waiting · Meeting or call"), [&] { controller.pauseReason = PauseReason::microphone; }},
        {text("Waiting · Screen sharing or recording"),
         [&] { controller.pauseReason = PauseReason::screenSharing; }},
        {text("Waiting · Focus app in front"), [&] { controller.pauseReason = PauseReason::deepFocus; }},
        {text("Paused"), [&] { controller.pause(); }},
        {text("Paused until ") + pauseEnd, [&] { controller.pause(900); }},
        {text("On break · 1:02:05"),
         [&] {
             controller.phase = Phase::counting;
             controller.startBreak(BreakKind::micro, BreakController::Initiator::user, 3725);
         }},
    };
    for (const auto &row : table) {
        row.state();
        EXPECT_EQ(statusLine(controller, platform.loop).toStdString(), row.line.toStdString());
    }
}

} // namespace pavonel::test
