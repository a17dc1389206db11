#include "AppDelegate.h"
#include "CommandLine.h"
#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/Updater.h"
#include "MemoryReturn.h"
#include "Platform/Allocator.h"
#include "Platform/BackgroundTask.h"
#include "Platform/CarriedFonts.h"
#include "Platform/GivenEnvironment.h"
#include "Platform/Platform.h"
#include "Platform/SingleInstance.h"
#include "Platform/WindowSystem.h"
#include "UI/Style/Style.h"
#include "makeApplication.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

using namespace pavonel;

void save() {
    Settings::shared().saveNow();
    Platform::current().defaults->flush();
}

/// Leaving destroys what a thread that nobody waits for may be using, now or when its disk comes back.
void endAtOnceIfAnybodyIsAtWork(int status) {
    if (BackgroundTask::anyRunning())
        std::_Exit(status);
}

void saveAtExit() {
    save();
    endAtOnceIfAnybodyIsAtWork(EXIT_FAILURE); // where the end is ours, this was asked before
}

/// Every road out leads through the end of the event loop: the menu, signals, the end of the session. Only
/// the window system's connection libraries leave on their own when the display is gone; the exit handler
/// saves then.
int runUntilQuit(SingleInstance &instance) {
    Platform &platform = Platform::current();
    const MemoryReturn memoryReturn(*platform.mainLoop);
    platform.termination->onSave(save);
    platform.termination->onEnd([&platform] { platform.mainLoop->quit(EXIT_SUCCESS); });
    platform.power->onSleep(save);
    AppDelegate delegate(platform, Settings::shared(), Stats::shared(), HotKeyManager::shared(),
                         Phone::shared(), Updater::shared());
    std::atexit(saveAtExit);
    delegate.setUp();
    // The call for which the bus started us is no second launch. It may have been another than a launch.
    bool isFirstCall = QCoreApplication::arguments().contains(QStringLiteral("--gapplication-service"));
    instance.afterWaitingCalls([&] { isFirstCall = false; });
    instance.onReopen([&] {
        if (!std::exchange(isFirstCall, false))
            delegate.reopen();
    });
    instance.onAction([&](OutsideAction action) {
        isFirstCall = false;
        delegate.act(action);
    });
    delegate.publishTo(instance.publisher());
    return QApplication::exec();
}

/// When a bus goes while Qt (6.4) subscribes to a signal there, Qt waits for a call that was never sent, and
/// libdbus by default aborts a program that does so. The call itself fails in an orderly way.
void surviveTheLossOfABus() {
    constexpr const char *variable = "DBUS_FATAL_WARNINGS";
    if (!qEnvironmentVariableIsSet(variable))
        setForUsAlone(variable, "0");
}

/// Whoever reads what we write may leave: that must not end us in the middle of anything.
void surviveTheLossOfAReader() {
    std::signal(SIGPIPE, SIG_IGN);
}

int start(int &argc, char **argv) {
    returnFreedMemory();
    surviveTheLossOfABus();
    if (!Phone::serviceAddress()) {
        std::fputs("pavonel: PAVONEL_PAIR_HOST is not the address of a pairing service\n", stderr);
        return EXIT_FAILURE;
    }
    if (!Updater::feedAddress())
        return refuseFeedAddress();
    chooseWindowSystem();
    useCarriedFonts();
    std::optional<QApplication> application;
    makeApplication(application, argc, argv);
    const auto instance = makeSingleInstance();
    const SingleInstance::Role role = instance->claim();
    if (role == SingleInstance::Role::laterUnreached)
        std::fputs("pavonel: already running\n", stderr);
    if (role != SingleInstance::Role::first)
        return EXIT_SUCCESS;

    Platform::install(makePlatform());
    QApplication::setStyle(new Style(Platform::current()));
    const int status = runUntilQuit(*instance);
    save(); // with the timers stopped and the windows gone
    endAtOnceIfAnybodyIsAtWork(status);
    return status;
}

} // namespace

int main(int argc, char **argv) {
    surviveTheLossOfAReader();
    const CommandLine commandLine = readCommandLine({argv + std::min(argc, 1), argv + argc});
    if (commandLine.order != Order::start) {
        if (const auto status = obey(commandLine, argc, argv))
            return *status;
    }
    return start(argc, argv);
}
