#include "Core/ActivityMonitor.h"
#include "Core/Settings.h"
#include "Platform/Platform.h"
#include "support/FakePlatform.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <cstdio>
#include <ctime>

/// Asks what a tick asks, over the real services of this machine with every sensor on, and prints what it
/// costs. Arguments: ticks, milliseconds from one to the next (0: as fast as they go), budget of milliseconds
/// of processor time for 60 ticks (0: none).
namespace {

double processorMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// Resident memory in KiB.
qint64 memory() {
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * 4;
}

qsizetype descriptors() {
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size();
}

qsizetype threads() {
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

class Ticks {
public:
    Ticks(const pavonel::SensorServices &sensors, const pavonel::Settings &settings)
        : monitor_(sensors), settings_(settings) {}

    void run(int count, int pause) {
        QEventLoop loop;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            tick();
            if (--count <= 0)
                loop.quit();
        });
        timer.start(pause);
        loop.exec();
    }

    double longest() const { return longest_; }

private:
    void tick() {
        const double before = processorMilliseconds();
        monitor_.idleSeconds();
        monitor_.currentPauseReason(settings_);
        longest_ = std::max(longest_, processorMilliseconds() - before);
    }

    pavonel::ActivityMonitor monitor_;
    const pavonel::Settings &settings_;
    double longest_ = 0;
};

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 60;
    const int pause = argc > 2 ? std::atoi(argv[2]) : 1000;
    const double budget = argc > 3 ? std::atof(argv[3]) : 0;

    pavonel::test::FakeDefaults defaults;
    const auto platform = pavonel::makePlatform();
    pavonel::Settings settings(defaults, *platform->mainLoop);
    settings.pauseOnMicrophone = true;
    settings.pauseOnScreenSharing = true;
    settings.pauseOnFullscreen = true;
    settings.pauseOnAudio = true;
    settings.deepFocusApps = QStringList{QStringLiteral("none.such")};

    Ticks warmUp(*platform, settings);
    warmUp.run(15, std::min(pause, 200)); // everything is found and connected by then
    Ticks ticks(*platform, settings);
    const auto memoryBefore = memory();
    const auto descriptorsBefore = descriptors();
    const double before = processorMilliseconds();
    ticks.run(count, pause);
    const double perMinute = (processorMilliseconds() - before) * 60 / count;

    std::printf("warm-up: longest tick %.2f ms\n", warmUp.longest());
    std::printf("%d ticks: %.2f ms of processor time for 60 of them, longest tick %.2f ms\n", count,
                perMinute, ticks.longest());
    std::printf("memory %+lld KiB, open files %+lld since the warm-up; now %lld KiB resident, %lld threads\n",
                static_cast<long long>(memory() - memoryBefore),
                static_cast<long long>(descriptors() - descriptorsBefore), static_cast<long long>(memory()),
                static_cast<long long>(threads()));
    if (budget > 0)
        std::printf("budget %.0f ms: %s\n", budget, perMinute <= budget ? "kept" : "BROKEN");
    return budget > 0 && perMinute > budget ? 1 : 0;
}
