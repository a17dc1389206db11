#include "AppDelegate.h"
#include "Platform/Platform.h"

#include <QApplication>

#include <cstdlib>

namespace {

using namespace pavonel;

void save() {
    Settings::shared().saveNow();
    Platform::current().defaults->flush();
}

/// Every road out leads through the end of the event loop: the menu, signals, the end of the session. Only
/// the window system's connection libraries leave on their own when the display is gone; the exit handler
/// saves then.
int runUntilQuit() {
    Termination &termination = *Platform::current().termination;
    termination.onSave(save);
    termination.onEnd([] { QCoreApplication::exit(); });
    AppDelegate delegate;
    std::atexit(save);
    delegate.setUp();
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("pavonel"));
    QApplication::setApplicationVersion(QStringLiteral(PAVONEL_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);

    Platform::install(makePlatform());
    const int status = runUntilQuit();
    save(); // with the timers stopped and the windows gone
    return status;
}
