#include "CommandLine.h"

#include "Core/SystemBits.h"
#include "Core/Updater.h"
#include "Core/UpdaterCommand.h"
#include "Platform/LoginItem.h"
#include "Platform/Platform.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace pavonel {

namespace {

using Order = CommandLine::Order;

constexpr std::pair<const char *, Order> switches[] = {
    {"--login-status", Order::loginStatus}, {"--unregister-login-item", Order::unregisterLoginItem},
    {"--update-now", Order::updateNow},     {"--help", Order::help},
    {"--version", Order::version},
};

constexpr int badUsage = 2;

constexpr char helpText[] =
    "Usage: pavonel [OPTION]\n"
    "Reminds you to take breaks. Started again while it runs, it shows its settings.\n"
    "\n"
    "  --login-status           tell whether Pavonel starts at login: enabled or disabled\n"
    "  --unregister-login-item  do not start at login any more\n"
    "  --update-now             look for a newer version and install it\n"
    "  --help                   show this\n"
    "  --version                show the version\n";

/// Session managers add it to the command of a program that they restore; Qt takes it.
constexpr char session[] = "-session";

std::string firstUnknown(const std::vector<std::string> &arguments) {
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument != session)
            return *argument;
        if (++argument == arguments.end())
            break;
    }
    return {};
}

void printLine(const QString &line) {
    std::fputs((line + u'\n').toLocal8Bit().constData(), stdout);
}

void printLoginStatus() {
    printLine(makeLoginItem()->isEnabled() ? QStringLiteral("enabled") : QStringLiteral("disabled"));
}

void unregisterLoginItem() {
    const auto failure = LaunchAtLogin::set(*makeLoginItem(), false);
    printLine(failure.value_or(QStringLiteral("unregistered")));
}

/// The end comes at once, with nothing destroyed, because a tool may still be at work on another thread.
std::optional<int> updateNow() {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    const auto feed = Updater::feedAddress();
    if (!feed)
        return refuseFeedAddress();
    const HeadlessPlatform platform = makeHeadlessPlatform();
    Updater updater(platform, *feed);
    UpdaterCommand update(*platform.mainLoop, updater, printLine);
    update.start();
    const int status = QCoreApplication::exec();
    update.finish();
    if (update.isToStart())
        return {};
    std::_Exit(status);
}

} // namespace

int refuseFeedAddress() {
    std::fputs("pavonel: PAVONEL_UPDATE_FEED is not the address of an update feed\n", stderr);
    return EXIT_FAILURE;
}

CommandLine readCommandLine(const std::vector<std::string> &arguments) {
    for (const auto &[name, order] : switches) {
        if (std::find(arguments.begin(), arguments.end(), name) != arguments.end())
            return {order, {}};
    }
    std::string unknown = firstUnknown(arguments);
    return unknown.empty() ? CommandLine{} : CommandLine{Order::refuse, std::move(unknown)};
}

std::optional<int> obey(const CommandLine &commandLine, int &argc, char **argv) {
    const QCoreApplication application(argc, argv);
    switch (commandLine.order) {
    case Order::start:
        return {};
    case Order::loginStatus:
        printLoginStatus();
        break;
    case Order::unregisterLoginItem:
        unregisterLoginItem();
        break;
    case Order::updateNow:
        return updateNow();
    case Order::help:
        std::fputs(helpText, stdout);
        break;
    case Order::version:
        printLine(QStringLiteral("pavonel ") + makeInstallation()->version().value_or(QStringLiteral("0")));
        break;
    case Order::refuse:
        std::fprintf(stderr, "pavonel: unknown option \"%s\"; see pavonel --help\n",
                     commandLine.unknown.c_str());
        return badUsage;
    }
    return EXIT_SUCCESS;
}

} // namespace pavonel
