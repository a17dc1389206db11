#include "Core/BreakController.h"
#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/Updater.h"
#include "Platform/Platform.h"
#include "UI/SettingsWindow/SettingsWindowController.h"
#include "UI/Style/Style.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

/// How long it takes from a click to a painted window. Run by `bench/settings-cost` on a desktop of its own.
namespace {

using namespace pavonel;

class PaintWatch final : public QObject {
public:
    bool painted = false;

    bool eventFilter(QObject *watched, QEvent *event) override {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Paint && widget && widget->isWindow())
            painted = true;
        return false;
    }
};

/// Milliseconds until the window has been painted, its contents included.
double timeToPaint(const std::function<void()> &act) {
    constexpr qint64 timeout = 10'000;
    PaintWatch watch;
    qApp->installEventFilter(&watch);
    QElapsedTimer clock;
    clock.start();
    act();
    while (!watch.painted && clock.elapsed() < timeout)
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// The middle one of several tries, beside whatever else the machine does.
double timeOfPage(SettingsWindowController &window, Page page) {
    const Page other = page == Page::breaks ? Page::wellness : Page::breaks;
    std::vector<double> times;
    for (int attempt = 0; attempt < 7; ++attempt) {
        window.show(other);
        QApplication::processEvents();
        times.push_back(timeToPaint([&] { window.show(page); }));
    }
    std::nth_element(times.begin(), times.begin() + 3, times.end());
    return times[3];
}

bool report(const char *what, double milliseconds, double budget) {
    const bool kept = milliseconds <= budget;
    std::printf("%-58s %7.1f ms   of %g%s\n", what, milliseconds, budget, kept ? "" : "   OVER BUDGET");
    return kept;
}

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Platform::install(makePlatform());
    Platform &platform = Platform::current();
    QApplication::setStyle(new Style(platform));
    Settings &settings = Settings::shared();
    Stats &stats = Stats::shared();
    SettingsWindowController window({platform, platform, *platform.pointer, *platform.installedApplications,
                                     *platform.sounds, *platform.processes, *platform.loginItem,
                                     *platform.desktopExtension, *platform.power, *platform.statusItem,
                                     *platform.defaults, settings, stats, Phone::shared(),
                                     HotKeyManager::shared(), Updater::shared()});

    bool kept = report("opening the settings for the first time", timeToPaint([&] { window.show(); }), 200);
    double slowest = 0;
    for (const PageEntry &entry : allPages()) {
        const double passed = timeOfPage(window, entry.page);
        std::printf("    %-54s %7.1f ms\n", qPrintable(entry.title), passed);
        slowest = std::max(slowest, passed);
    }
    kept &= report("changing to the slowest page", slowest, 50);
    return kept ? 0 : 1;
}
