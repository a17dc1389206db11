#include "AppDelegate.h"
#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/Updater.h"
#include "Platform/Platform.h"
#include "UI/Style/Style.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QScreen>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <set>
#include <vector>

#include <xcb/xcb.h>

using namespace pavonel;

namespace {

/// Notes which break screens have been painted.
class Painted final : public QObject {
public:
    std::set<const QObject *> windows;

    bool eventFilter(QObject *watched, QEvent *event) override {
        const auto *widget = event->type() == QEvent::Paint ? qobject_cast<QWidget *>(watched) : nullptr;
        if (widget && widget->window()->windowTitle() == u"Pavonel Break")
            windows.insert(widget->window());
        return false;
    }
};

/// Until the X server has done all that it was asked for.
void finishDrawing() {
    xcb_connection_t *connection = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

double processorMilliseconds() {
    return static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

void let(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Start {
    double waited;
    double processor;
};

/// A break starts as it does when its tick comes, and is skipped again.
Start startBreak(AppDelegate &delegate, Painted &painted) {
    painted.windows.clear();
    const auto screens = static_cast<std::size_t>(QGuiApplication::screens().size());
    const double processor = processorMilliseconds();
    QElapsedTimer waited;
    waited.start();
    delegate.act(OutsideAction::takeMicroBreak);
    while (painted.windows.size() < screens)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    finishDrawing();
    const Start start{static_cast<double>(waited.nsecsElapsed()) / 1e6, processorMilliseconds() - processor};
    let(1200); // it fades in
    delegate.act(OutsideAction::skip);
    let(1200);
    return start;
}

} // namespace

/// From a break that is due to its painted screens, some times over.
int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Platform::install(makePlatform());
    QApplication::setStyle(new Style(Platform::current()));
    AppDelegate delegate(Platform::current(), Settings::shared(), Stats::shared(), HotKeyManager::shared(),
                         Phone::shared(), Updater::shared());
    Painted painted;
    application.installEventFilter(&painted);
    delegate.setUp();
    let(2000);

    const Start first = startBreak(delegate, painted);
    std::vector<double> later;
    double processor = 0;
    constexpr int times = 9;
    for (int i = 0; i < times; ++i) {
        const Start start = startBreak(delegate, painted);
        later.push_back(start.waited);
        processor += start.processor / times;
    }
    std::sort(later.begin(), later.end());
    std::printf(
        "due tick to painted screens, %d of them: %.0f ms the first time (%.0f ms of processor time),\n"
        "then %.0f ms (best %.0f, worst %.0f; %.0f ms of processor time) of 50\n",
        static_cast<int>(QGuiApplication::screens().size()), first.waited, first.processor, later[times / 2],
        later.front(), later.back(), processor);
    return EXIT_SUCCESS;
}
