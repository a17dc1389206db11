#include "EndToEnd/Desktop.h"
#include "EndToEnd/FadeWatch.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Which event loop of Qt's the program runs.
enum class Loop { ofGlib, ofQt };

struct Shown {
    const char *name;
    const char *title;
    QJsonObject settings; ///< With which it comes soon and by itself, and stays.
};

const Shown breakScreen{"the_break",
                        "Pavonel Break",
                        {{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}}};
const Shown headsUp{"the_heads_up",
                    "Pavonel Heads-up",
                    {{QStringLiteral("microInterval"), 600},
                     {QStringLiteral("preNotifySeconds"), 598},
                     {QStringLiteral("showFloatingCountdown"), false}}};
const Shown toast{"the_toast",
                  "Pavonel Toast",
                  {{QStringLiteral("microInterval"), 3600}, {QStringLiteral("postureInterval"), 3}}};

void PrintTo(const Shown &shown, std::ostream *out) {
    *out << shown.name;
}

using Fading = std::tuple<Shown, Loop>;

std::string nameOf(const testing::TestParamInfo<Fading> &info) {
    const auto &[shown, loop] = info.param;
    return std::string(shown.name) + (loop == Loop::ofGlib ? "_in_glibs_loop" : "_in_qts_loop");
}

class FadingIn : public testing::TestWithParam<Fading> {};

INSTANTIATE_TEST_SUITE_P(Loops, FadingIn,
                         testing::Combine(testing::Values(breakScreen, headsUp, toast),
                                          testing::Values(Loop::ofGlib, Loop::ofQt)),
                         nameOf);

/// The pointer rests, and nothing else of Pavonel's makes Qt speak with the X server.
class QuietDesktop : public Desktop {
public:
    QuietDesktop(const Shown &shown, Loop loop)
        : Desktop(XServer::WindowManager::xfwm4WithCompositor), title_(QString::fromLatin1(shown.title)),
          watch_(server().display()) {
        environment().insert(QStringLiteral("QT_NO_GLIB"),
                             loop == Loop::ofGlib ? QString() : QStringLiteral("1"));
        store(shown.settings);
        startProgram();
    }

    /// In how many steps it became opaque, which is waited for; 0 once the program has ended.
    int steps() {
        int seen = 0;
        waitUntil([&] {
            const bool ended = isOpaque() || !isRunning();
            seen = watch_.steps(title_); // looked at all the while
            return ended;
        });
        return isRunning() ? seen : 0;
    }

private:
    bool isOpaque() {
        return std::ranges::any_of(tree().visible(), [this](const SeenWindow &window) {
            return window.title == title_ && tree().opacity(window) >= 1;
        });
    }

    const QString title_;
    FadeWatch watch_;
};

} // namespace

/// What waits for something else to be sent comes at one or two instants, each time. A busy machine swallows
/// most of a fade's steps, but not of every fade.
TEST_P(FadingIn, is_seen_step_by_step_while_nothing_else_happens) {
    constexpr int several = 6;
    const auto &[shown, loop] = GetParam();
    int steps = 0;
    for (int attempts = 0; attempts < 5 && steps < several; ++attempts) {
        QuietDesktop desktop(shown, loop);
        steps = desktop.steps();
    }
    EXPECT_GE(steps, several) << "in the last of five attempts";
}

} // namespace pavonel::test
