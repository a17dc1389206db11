#include "Platform/DefaultsFolder.h"

#include <atomic>
#include <csignal>
#include <random>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

const QString plain = QStringLiteral("plain");
const QString lazy = QStringLiteral("lazy");
const QString filling = QStringLiteral("filling");

/// What the writer has been promised to find on disk, whenever it is killed; survives it.
class Promise {
public:
    Promise()
        : number_(static_cast<std::atomic<qint64> *>(
              ::mmap(nullptr, sizeof *number_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    Promise(const Promise &) = delete;
    Promise &operator=(const Promise &) = delete;
    ~Promise() { ::munmap(number_, sizeof *number_); }

    std::atomic<qint64> &number() const { return *number_; }

private:
    std::atomic<qint64> *number_;
};

struct FileDefaultsKill : DefaultsFolder {
    /// Changes the store for ever; what the rules have on disk by now is promised.
    [[noreturn]] void write(qint64 from) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        FileDefaults &defaults = open();
        for (qint64 number = from;; ++number) {
            defaults.set(plain, number);
            defaults.set(filling, QString(static_cast<int>(number % 7) * 10'000, QLatin1Char('x')));
            defaults.setLazily(lazy, [number] { return number; });
            loop.advance(1);
            promise.number() = number;
        }
    }

    void writeUntilKilled(qint64 from, unsigned microseconds) {
        const pid_t writer = ::fork();
        if (writer == 0)
            write(from);
        ::usleep(microseconds);
        ::kill(writer, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(writer, &status, 0), writer);
        ASSERT_EQ(WTERMSIG(status), SIGKILL) << "the writer ended by itself";
    }

    Promise promise;
};

} // namespace

TEST_F(FileDefaultsKill, whenever_the_program_is_killed_the_file_is_whole_and_as_new_as_promised) {
    const auto seed = std::random_device()();
    std::mt19937 random(seed);
    std::uniform_int_distribution<unsigned> microseconds(0, 80'000);
    qint64 number = 0;
    for (int kills = 0; kills < 300 || number < 100; ++kills) {
        ASSERT_NO_FATAL_FAILURE(writeUntilKilled(number + 1, microseconds(random)));
        open();
        number = get<qint64>(*store, "plain");
        ASSERT_GE(number, promise.number()) << "older than promised; seed " << seed;
        ASSERT_EQ(get<qint64>(*store, "lazy"), number) << "torn; seed " << seed;
        ASSERT_EQ(get<QString>(*store, "filling").size(), number % 7 * 10'000);
        ASSERT_LE(files().size(), 1) << "left behind: " << files().join(u' ').toStdString();
    }
}

} // namespace pavonel::test
