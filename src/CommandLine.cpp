#include "CommandLine.h"

#include "Core/Stats.h"
#include "Core/StatsExport.h"
#include "Core/StatusCommand.h"
#include "Core/SystemBits.h"
#include "Core/Updater.h"
#include "Core/UpdaterCommand.h"
#include "Platform/LoginItem.h"
#include "Platform/Platform.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace pavonel {

namespace {

constexpr std::pair<const char *, Order> switches[] = {
    {"--login-status", Order::loginStatus}, {"--unregister-login-item", Order::unregisterLoginItem},
    {"--update-now", Order::updateNow},     {"--help", Order::help},
    {"--version", Order::version},          {"--status", Order::status},
    {"--export-stats", Order::exportStats},
};

constexpr char helpText[] =
    "Usage: pavonel [OPTION]\n"
    "Reminds you to take breaks. Started again while it runs, it shows its settings.\n"
    "\n"
    "  --login-status           tell whether Pavonel starts at login: enabled or disabled\n"
    "  --unregister-login-item  do not start at login any more\n"
    "  --update-now             look for a newer version and install it\n"
    "  --status                 tell what the Pavonel that runs is about; status 3 without one\n"
    "  --status --json          the same for programs; with --follow, a line at each change\n"
    "  --export-stats           print the statistics of all kept days as CSV; with --json, as JSON\n"
    "  --help                   show this\n"
    "  --version                show the version\n";

bool write(const QByteArray &text) {
    return std::fputs(text.constData(), stdout) >= 0 && std::fflush(stdout) == 0;
}

bool printLine(const QString &line) {
    return write((line + u'\n').toLocal8Bit());
}

bool complain(const QString &what) {
    return std::fputs(("pavonel: " + what.toLocal8Bit() + '\n').constData(), stderr) >= 0;
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

int tellStatus(const CommandLine &commandLine) {
    const HeadlessPlatform platform = makeHeadlessPlatform();
    const auto running = findRunningPavonel();
    const auto form = commandLine.isJson ? StatusCommand::Form::json : StatusCommand::Form::line;
    StatusCommand command(*platform.mainLoop, *running, form, printLine, complain);
    if (!commandLine.follows)
        return command.tell();
    const QSocketNotifier nobodyReads(fileno(stdout), QSocketNotifier::Exception);
    QObject::connect(&nobodyReads, &QSocketNotifier::activated, [] { QCoreApplication::exit(); });
    command.follow();
    return QCoreApplication::exec();
}

int exportStats(const CommandLine &commandLine) {
    const auto format = commandLine.isJson ? StatsExport::Format::json : StatsExport::Format::csv;
    const StatsExport made = StatsExport::of(readStoredEntry(Stats::key), format);
    for (const QString &complaint : made.complaints)
        complain(complaint);
    const bool isWritten = write(made.text);
    if (!isWritten)
        complain(QStringLiteral("the statistics cannot be written"));
    return isWritten && made.complaints.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int refuseFeedAddress() {
    std::fputs("pavonel: PAVONEL_UPDATE_FEED is not the address of an update feed\n", stderr);
    return EXIT_FAILURE;
}

CommandLine readCommandLine(const std::vector<std::string> &arguments) {
    const auto has = [&](const char *name) {
        return std::find(arguments.begin(), arguments.end(), name) != arguments.end();
    };
    CommandLine read{Order::start, has("--json"), has("--follow")};
    const auto *const found = std::find_if(std::begin(switches), std::end(switches),
                                           [&](const auto &entry) { return has(entry.first); });
    if (found != std::end(switches))
        read.order = found->second;
    return read;
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
    case Order::status:
        return tellStatus(commandLine);
    case Order::exportStats:
        return exportStats(commandLine);
    }
    return EXIT_SUCCESS;
}

} // namespace pavonel
