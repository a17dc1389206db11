#include "AppDelegate.h"
#include "CommandLine.h"
#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/Updater.h"
#include "Platform/Platform.h"
#include "Platform/SingleInstance.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

using namespace pavonel;

std::string heldMessages;

/// Qt ends the process with several lines and an abort where it finds no display; a person needs one line.
void refuseWithoutDisplay(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    if (type == QtFatalMsg) {
        std::fputs("pavonel: no display can be opened; start it from within a desktop session\n", stderr);
        std::_Exit(EXIT_FAILURE);
    }
    heldMessages += qFormatLogMessage(type, context, text).toLocal8Bit().toStdString() + '\n';
}

void makeApplication(std::optional<QApplication> &application, int &argc, char **argv) {
    qInstallMessageHandler(refuseWithoutDisplay);
    QApplication::setStyle(
        QStringLiteral("Fusion")); // our windows draw themselves; no desktop's style is loaded
    application.emplace(argc, argv);
    qInstallMessageHandler(nullptr);
    std::fputs(heldMessages.c_str(), stderr);
    QApplication::setApplicationName(QStringLiteral("pavonel"));
    QApplication::setApplicationVersion(QStringLiteral(PAVONEL_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);
}

void save() {
    Settings::shared().saveNow();
    Platform::current().defaults->flush();
}

/// Every road out leads through the end of the event loop: the menu, signals, the end of the session. Only
/// the window system's connection libraries leave on their own when the display is gone; the exit handler
/// saves then.
int runUntilQuit(SingleInstance &instance) {
    Platform &platform = Platform::current();
    platform.termination->onSave(save);
    platform.termination->onEnd([] { QCoreApplication::exit(); });
    platform.power->onSleep(save);
    AppDelegate delegate(platform, Settings::shared(), Stats::shared(), HotKeyManager::shared(),
                         Phone::shared(), Updater::shared());
    std::atexit(save);
    delegate.setUp();
    instance.onReopen([&delegate] { delegate.reopen(); });
    instance.onAction([&delegate](OutsideAction action) { delegate.act(action); });
    return QApplication::exec();
}

/// When a bus goes while Qt (6.4) subscribes to a signal there, Qt waits for a call that was never sent, and
/// libdbus by default aborts a program that does so. The call itself fails in an orderly way.
void surviveTheLossOfABus() {
    constexpr const char *variable = "DBUS_FATAL_WARNINGS";
    if (!qEnvironmentVariableIsSet(variable))
        qputenv(variable, "0");
}

int start(int &argc, char **argv) {
    surviveTheLossOfABus();
    if (!Phone::serviceAddress()) {
        std::fputs("pavonel: PAVONEL_PAIR_HOST is not the address of a pairing service\n", stderr);
        return EXIT_FAILURE;
    }
    if (!Updater::feedAddress())
        return refuseFeedAddress();
    std::optional<QApplication> application;
    makeApplication(application, argc, argv);
    const auto instance = makeSingleInstance();
    const SingleInstance::Role role = instance->claim();
    if (role == SingleInstance::Role::laterUnreached)
        std::fputs("pavonel: already running\n", stderr);
    if (role != SingleInstance::Role::first)
        return EXIT_SUCCESS;

    Platform::install(makePlatform());
    const int status = runUntilQuit(*instance);
    save(); // with the timers stopped and the windows gone
    return status;
}

} // namespace

int main(int argc, char **argv) {
    const CommandLine commandLine = readCommandLine({argv + std::min(argc, 1), argv + argc});
    if (commandLine.order != CommandLine::Order::start) {
        if (const auto status = obey(commandLine, argc, argv))
            return *status;
    }
    return start(argc, argv);
}
