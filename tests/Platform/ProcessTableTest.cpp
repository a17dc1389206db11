#include "Platform/Linux/Applications/ProcessTable.h"

#include "FakeProcesses.h"

#include <QFileInfo>

#include <algorithm>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr std::chrono::hours noHurry(1);

bool nobody(const QByteArray &) {
    return false;
}

QString baseName(const ProcessFolder &process) {
    const auto executable = process.executable();
    return executable ? QFileInfo(QString::fromLocal8Bit(*executable)).fileName() : QString();
}

} // namespace

TEST(ProcessTable, only_new_processes_are_opened) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/a"));
    processes.add(20, QStringLiteral("/usr/bin/b"));
    ProcessTable table(processes.root(), baseName, nobody);
    table.refresh(noHurry);
    EXPECT_EQ(table.opened(), 2);
    table.refresh(noHurry);
    processes.add(30, QStringLiteral("/usr/bin/c"));
    table.refresh(noHurry);
    EXPECT_EQ(table.opened(), 3);
    processes.remove(20);
    table.refresh(noHurry);
    EXPECT_EQ(table.opened(), 3);
    EXPECT_EQ(identifiers(table.applications()), (QStringList{QStringLiteral("a"), QStringLiteral("c")}));
}

TEST(ProcessTable, a_number_given_again_is_another_process) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/a"));
    ProcessTable table(processes.root(), baseName, nobody);
    table.refresh(noHurry);
    processes.replace(10, QStringLiteral("/usr/bin/b"));
    table.refresh(noHurry);
    EXPECT_EQ(identifiers(table.applications()), QStringList{QStringLiteral("b")});
}

TEST(ProcessTable, a_launcher_becomes_what_it_launches) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/bin/sh"));
    ProcessTable table(processes.root(), baseName, nobody);
    table.refresh(noHurry);
    processes.run(10, QStringLiteral("/usr/bin/game"));
    table.refresh(noHurry);
    EXPECT_EQ(identifiers(table.applications()), QStringList{QStringLiteral("game")});
}

TEST(ProcessTable, an_application_lasts_as_long_as_any_of_its_processes) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/a"));
    processes.add(20, QStringLiteral("/usr/bin/a"));
    ProcessTable table(processes.root(), baseName, nobody);
    table.refresh(noHurry);
    ASSERT_EQ(table.applications().size(), 1);
    EXPECT_EQ(table.applications().front().processId, 10);
    processes.remove(10);
    table.refresh(noHurry);
    ASSERT_EQ(table.applications().size(), 1);
    EXPECT_EQ(table.applications().front().processId, 20);
    processes.remove(20);
    table.refresh(noHurry);
    EXPECT_TRUE(table.applications().empty());
}

TEST(ProcessTable, a_process_that_vanishes_between_listing_and_reading_is_none) {
    FakeProcesses processes;
    for (int id = 1; id <= 50; ++id)
        processes.add(id, QStringLiteral("/usr/bin/a"));
    ProcessTable table(
        processes.root(),
        [&](const ProcessFolder &process) {
            processes.remove(process.id()); // and the one that is next
            processes.remove(process.id() - 1);
            return baseName(process);
        },
        nobody);
    table.refresh(noHurry);
    table.refresh(noHurry);
    EXPECT_TRUE(table.applications().empty());
}

TEST(ProcessTable, a_folder_that_is_not_there_has_no_processes) {
    ProcessTable table("/nonexistent/proc", baseName, nobody);
    table.refresh(noHurry);
    EXPECT_TRUE(table.applications().empty());
}

TEST(ProcessTable, two_thousand_processes_are_taken_up_without_a_stall) {
    FakeProcesses processes;
    for (int id = 1; id <= 2000; ++id)
        processes.add(id, QStringLiteral("/usr/bin/p%1").arg(id % 25));
    ProcessTable table(processes.root(), baseName, nobody);
    double longest = 0;
    for (int tick = 0; tick < 1000 && table.opened() < 2000; ++tick) {
        const double before = processorSeconds();
        table.refresh(std::chrono::milliseconds(8));
        longest = std::max(longest, processorSeconds() - before);
    }
    EXPECT_EQ(table.opened(), 2000);
    EXPECT_EQ(table.applications().size(), 25);
    EXPECT_LT(longest, 0.050) << "seconds of processor time in one go";
}

TEST(ProcessTable, the_newest_of_many_processes_come_first) {
    FakeProcesses processes;
    for (int id = 1; id <= 20; ++id)
        processes.add(id, QStringLiteral("/usr/bin/p%1").arg(id));
    std::vector<ProcessId> order;
    ProcessTable table(
        processes.root(),
        [&](const ProcessFolder &process) {
            order.push_back(process.id());
            return QString();
        },
        nobody);
    table.refresh(noHurry);
    ASSERT_EQ(order.size(), 20);
    EXPECT_TRUE(std::is_sorted(order.rbegin(), order.rend()));
}

TEST(ProcessFolder, finds_the_unit_among_the_older_groups_as_well) {
    FakeProcesses processes;
    processes.add(10, QStringLiteral("/usr/bin/a"));
    processes.writeGroups(10,
                          "12:cpu:/user.slice\n1:name=systemd:/user.slice/app.slice/app-a-10.scope\n0::/\n");
    const ProcessTable table(processes.root(), baseName, nobody);
    EXPECT_EQ(table.folder(10).unit(), "app-a-10.scope");
}

/// A table over processes whose numbers the kernel tells.
class NumberedProcesses : public ::testing::Test {
protected:
    NumberedProcesses() {
        start(10, QStringLiteral("/usr/bin/old"));
        table.refresh(noHurry);
    }
    void start(int id, const QString &executable) {
        processes.add(id, executable);
        processes.tellLast(id);
    }
    void refresh(int times = 1) {
        for (int time = 0; time < times; ++time)
            table.refresh(noHurry);
    }
    QStringList running() const { return identifiers(table.applications()); }

    FakeProcesses processes;
    ProcessTable table{processes.root(), baseName,
                       [](const QByteArray &executable) { return executable.endsWith("/recorder"); }};
};

TEST_F(NumberedProcesses, only_new_numbers_are_tried) {
    start(200, QStringLiteral("/usr/bin/new"));
    refresh(2);
    EXPECT_EQ(running(), (QStringList{QStringLiteral("new"), QStringLiteral("old")}));
    EXPECT_EQ(table.walks(), 1);
    EXPECT_EQ(table.opened(), 2);
    refresh(100);
    EXPECT_EQ(table.walks(), 1);
    EXPECT_EQ(table.opened(), 2);
}

TEST_F(NumberedProcesses, what_ends_soon_after_its_birth_is_never_identified) {
    start(200, QStringLiteral("/usr/bin/compiler"));
    refresh();
    processes.remove(200);
    refresh();
    EXPECT_EQ(table.opened(), 1);
    EXPECT_EQ(running(), QStringList{QStringLiteral("old")});
}

TEST_F(NumberedProcesses, a_recorder_is_identified_at_its_birth) {
    start(200, QStringLiteral("/usr/bin/recorder"));
    refresh();
    EXPECT_EQ(running(), (QStringList{QStringLiteral("old"), QStringLiteral("recorder")}));
    processes.remove(200);
    refresh();
    EXPECT_EQ(running(), QStringList{QStringLiteral("old")});
}

TEST_F(NumberedProcesses, a_thread_is_no_process) {
    start(200, QStringLiteral("/usr/bin/recorder"));
    processes.makeThread(200, 10);
    start(201, QStringLiteral("/usr/bin/new"));
    processes.makeThread(201, 10);
    refresh(3);
    EXPECT_EQ(running(), QStringList{QStringLiteral("old")});
}

TEST_F(NumberedProcesses, a_number_told_before_its_process_shows_is_tried_again) {
    processes.tellLast(200);
    refresh();
    processes.add(200, QStringLiteral("/usr/bin/recorder"));
    refresh();
    EXPECT_EQ(running(), (QStringList{QStringLiteral("old"), QStringLiteral("recorder")}));
}

TEST_F(NumberedProcesses, numbers_that_begin_anew_lead_to_a_walk) {
    start(300, QStringLiteral("/usr/bin/new"));
    refresh(2);
    processes.remove(300);
    processes.replace(10, QStringLiteral("/usr/bin/other"));
    processes.tellLast(12);
    refresh();
    EXPECT_EQ(table.walks(), 2);
    EXPECT_EQ(running(), QStringList{QStringLiteral("other")});
}

TEST_F(NumberedProcesses, a_great_leap_of_the_numbers_leads_to_a_walk) {
    start(200'000, QStringLiteral("/usr/bin/new"));
    refresh();
    EXPECT_EQ(table.walks(), 2);
    EXPECT_EQ(running(), (QStringList{QStringLiteral("new"), QStringLiteral("old")}));
}

TEST_F(NumberedProcesses, what_no_number_told_of_is_found_in_time) {
    processes.tellLast(100);
    refresh(2);
    ASSERT_EQ(table.walks(), 1);
    processes.add(9, QStringLiteral("/usr/bin/hidden"));
    refresh(1000);
    EXPECT_EQ(running(), (QStringList{QStringLiteral("hidden"), QStringLiteral("old")}));
    EXPECT_LE(table.walks(), 3);
}

TEST_F(NumberedProcesses, a_process_that_becomes_another_program_late_is_recognised) {
    refresh(50);
    processes.run(10, QStringLiteral("/usr/bin/late"));
    refresh();
    EXPECT_EQ(running(), QStringList{QStringLiteral("late")});
}

TEST_F(NumberedProcesses, new_rules_apply_to_those_born_since_the_walk_as_well) {
    start(200, QStringLiteral("/usr/bin/new"));
    refresh(20);
    const auto before = table.opened();
    table.reconsider();
    refresh();
    EXPECT_EQ(table.opened(), before + 2);
    EXPECT_EQ(running(), (QStringList{QStringLiteral("new"), QStringLiteral("old")}));
}

TEST(ProcessTable, there_may_always_be_more_where_the_kernel_tells_no_number) {
    const FakeProcesses processes;
    ProcessTable table(processes.root(), baseName, nobody);
    for (int time = 0; time < 20; ++time)
        table.refresh(noHurry);
    EXPECT_TRUE(table.mayHaveMore());
}

TEST_F(NumberedProcesses, what_no_number_told_of_is_found_in_time_though_refreshes_wait) {
    refresh(20);
    processes.add(5, QStringLiteral("/usr/bin/hidden"));
    int looks = 0;
    while (!table.mayHaveMore() && looks < 1000)
        ++looks;
    EXPECT_GT(looks, 500);
    EXPECT_LT(looks, 600);
    refresh();
    EXPECT_TRUE(running().contains(QStringLiteral("hidden")));
}

TEST_F(NumberedProcesses, there_may_be_more_from_a_birth_until_the_newborn_has_grown_up) {
    refresh(20);
    EXPECT_FALSE(table.mayHaveMore());
    start(11, QStringLiteral("/usr/bin/new"));
    EXPECT_TRUE(table.mayHaveMore());
    refresh();
    EXPECT_TRUE(table.mayHaveMore());
    refresh(20);
    EXPECT_FALSE(table.mayHaveMore());
    table.reconsider();
    EXPECT_TRUE(table.mayHaveMore());
}

} // namespace pavonel::test
