#include "EndToEnd/HeadlessProgram.h"
#include "support/InChild.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDir>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

struct Damage {
    const char *name;
    QByteArray (*content)();
};

void let(int milliseconds) {
    bool passed = false;
    QTimer::singleShot(milliseconds, [&] { passed = true; });
    waitUntil([&] { return passed; });
}

double screenSeconds(const HeadlessProgram &program) {
    return program.storedToday(QStringLiteral("screenSeconds"));
}

/// Lets the program run until it has counted, ends it, and gives what it counted into the store.
double screenSecondsOfARun(HeadlessProgram &program, int signal) {
    const double before = screenSeconds(program);
    for (int milliseconds = 2500; milliseconds <= 20'000; milliseconds *= 2) {
        program.start();
        let(milliseconds);
        EXPECT_EQ(program.end(signal), 0);
        if (screenSeconds(program) > before)
            break;
    }
    return screenSeconds(program) - before;
}

} // namespace

class EndingTheProgram : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Signals, EndingTheProgram, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto &signal) { return std::string("SIG") + sigabbrev_np(signal.param); });

TEST_P(EndingTheProgram, loses_nothing_and_adds_to_what_was_stored) {
    HeadlessProgram program;
    EXPECT_GE(screenSecondsOfARun(program, GetParam()), 1);
    EXPECT_GE(screenSecondsOfARun(program, GetParam()), 1);
}

class DamagedStore : public testing::TestWithParam<Damage> {};

INSTANTIATE_TEST_SUITE_P(
    Files, DamagedStore,
    testing::Values(
        Damage{"truncated", [] { return QByteArray(R"({"microInterval": 900, "mess)"); }},
        Damage{"binary", [] { return QByteArray("\x7f\x45LF\x02\0\0\xff\xfe", 9).repeated(1000); }},
        Damage{"empty", [] { return QByteArray(); }},
        Damage{"of_50_megabytes", [] { return "{\"x\": \"" + QByteArray(50'000'000, 'x') + "\"}"; }}),
    [](const auto &damage) { return std::string(damage.param.name); });

TEST_P(DamagedStore, is_set_aside_and_the_program_starts_all_the_same) {
    HeadlessProgram program;
    const QByteArray damaged = GetParam().content();
    writeFile(program.storePath(), damaged);

    EXPECT_GE(screenSecondsOfARun(program, SIGTERM), 1);

    const QDir folder(program.storeFolder());
    const QStringList aside = folder.entryList({QStringLiteral("defaults.json.broken-*")});
    ASSERT_EQ(aside.size(), 1);
    EXPECT_TRUE(readFile(folder.filePath(aside.first())) == damaged) << "the old file was changed";
}

class UnwritableStore : public testing::Test {
protected:
    UnwritableStore() { writeFile(program.storePath(), stored); }

    void SetUp() override {
        if (!mayMount())
            GTEST_SKIP() << "This machine does not let a test mount a small disk.";
    }

    void expectARunThatLeavesTheStoreAlone() {
        let(2500);
        EXPECT_TRUE(program.isRunning());
        EXPECT_EQ(program.end(SIGTERM), 0);
        EXPECT_EQ(readFile(program.storePath()), stored);
    }

    const QByteArray stored = R"({"microInterval": 900})";
    HeadlessProgram program;
};

TEST_F(UnwritableStore, in_a_read_only_folder_the_program_runs_all_the_same) {
    program.start("mount --bind \"$1\" \"$1\"; mount -o remount,bind,ro \"$1\"");
    expectARunThatLeavesTheStoreAlone();
}

TEST_F(UnwritableStore, on_a_full_disk_the_program_runs_all_the_same) {
    program.start("mount -t tmpfs -o size=16k,mode=0700 none \"$1\"\n"
                  "cd \"$1\"\n"
                  "printf '{\"microInterval\": 900}' >defaults.json\n"
                  "dd if=/dev/zero of=filler bs=1k count=64 2>/dev/null || true\n"
                  "cd /");
    expectARunThatLeavesTheStoreAlone();
}

} // namespace pavonel::test
