#include "Platform/Posix/FileDefaults.h"
#include "support/NightShifts.h"
#include "support/VirtualMainLoop.h"

#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <ctime>
#include <iostream>

namespace {

using namespace pavonel;
using namespace pavonel::test;

constexpr double budget = 15; // seconds

class Stopwatch {
public:
    double elapsed() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    double processor() const { return static_cast<double>(std::clock() - processorStart_) / CLOCKS_PER_SEC; }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::clock_t processorStart_ = std::clock();
};

/// What a program that starts now would find.
Days storedDays(const QString &path, const QByteArray &zoneId) {
    VirtualMainLoop loop(zoneId);
    FileDefaults defaults(path, loop, FileDefaults::Writing::onTheCallersThread);
    return Stats(defaults, loop).days();
}

bool check(bool holds, const char *what) {
    if (!holds)
        std::cout << "WRONG: " << what << '\n';
    return holds;
}

bool runYear(const NightShifts &shifts) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("defaults.json"));
    const Stopwatch stopwatch;
    const ShiftTotals totals = work(shifts, [&](MainLoop &loop) -> std::unique_ptr<UserDefaults> {
        return std::make_unique<FileDefaults>(path, loop, FileDefaults::Writing::onTheCallersThread);
    });
    const double elapsed = stopwatch.elapsed();
    const double processor = stopwatch.processor();

    std::cout << shifts.zoneId.toStdString() << ", " << shifts.nights << " nights of ten hours: " << elapsed
              << " s, of these " << processor << " s of processor time (budget " << budget << " s)\n    ";
    PrintTo(totals, &std::cout);
    std::cout << '\n';

    const bool isRight = check(totals == expected(shifts), "the totals are not those of the model");
    const bool isStored =
        check(storedDays(path, shifts.zoneId) == totals.kept, "the file does not hold the statistics");
    // By processor time, because the rest is what other programs made it wait.
    const bool isQuick = check(processor <= budget, "it took longer than it may");
    return isRight && isStored && isQuick;
}

} // namespace

/// 2028 has a leap day. The year can be shortened for a look at it: bench/year NIGHTS ZONE
int main(int argc, char **argv) {
    const int nights = argc > 1 ? std::atoi(argv[1]) : 366;
    const QByteArray zone = argc > 2 ? argv[2] : "Europe/Berlin";
    return runYear({zone, QDate(2028, 1, 1), nights}) ? 0 : 1;
}
