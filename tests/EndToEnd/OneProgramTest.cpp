#include "EndToEnd/HeadlessProgram.h"
#include "support/MessageBus.h"
#include "support/MockLogind.h"
#include "support/waitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>

#include <algorithm>
#include <array>
#include <csignal>
#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString service = QStringLiteral("org.pavonel.Pavonel");

struct OneProgram : testing::Test {
    OneProgram() { program.environment().insert(sessionBus, bus->address()); }
    ~OneProgram() override { QDBusConnection::disconnectFromBus(QStringLiteral("outsider")); }

    void startAndWaitForTheName() {
        program.start();
        ASSERT_TRUE(waitUntil([this] { return outsider.interface()->isServiceRegistered(service).value(); }));
    }

    void act(const char *action) {
        QDBusMessage message = QDBusMessage::createMethodCall(service, QStringLiteral("/org/pavonel/Pavonel"),
                                                              QStringLiteral("org.freedesktop.Application"),
                                                              QStringLiteral("ActivateAction"));
        message << QString::fromUtf8(action) << QVariantList() << QVariantMap();
        EXPECT_EQ(outsider.call(message).type(), QDBusMessage::ReplyMessage);
    }

    const QString sessionBus = QStringLiteral("DBUS_SESSION_BUS_ADDRESS");
    std::optional<MessageBus> bus{std::in_place};
    QDBusConnection outsider = QDBusConnection::connectToBus(bus->address(), QStringLiteral("outsider"));
    HeadlessProgram program;
};

} // namespace

TEST_F(OneProgram, a_second_launch_reaches_the_first_and_exits_0) {
    startAndWaitForTheName();
    const auto second = program.run({});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.errors, "");
    EXPECT_TRUE(program.isRunning());
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, without_a_bus_a_second_launch_says_so_and_exits_0) {
    program.environment().insert(sessionBus, QStringLiteral("unix:path=/nonexistent"));
    program.start();
    const auto second = program.run({});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.errors, "pavonel: already running\n");
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, of_several_launched_at_the_same_moment_one_stays) {
    for (const QString &address : {bus->address(), QStringLiteral("unix:path=/nonexistent")}) {
        program.environment().insert(sessionBus, address);
        std::array<std::unique_ptr<ChildProcess>, 4> launched;
        for (auto &child : launched)
            child = std::make_unique<ChildProcess>(QStringLiteral(PAVONEL_PROGRAM), QStringList(),
                                                   program.environment());
        const auto count = [&](auto condition) {
            return std::count_if(launched.begin(), launched.end(),
                                 [&](auto &child) { return condition(*child); });
        };
        EXPECT_TRUE(waitUntil([&] { return count([](auto &child) { return child.isRunning(); }) == 1; }));
        EXPECT_EQ(count([](auto &child) {
                      return !child.isRunning() && child.process().exitStatus() == QProcess::NormalExit &&
                             child.process().exitCode() == 0;
                  }),
                  3);
        EXPECT_EQ(program.run({}).status, 0) << "the one that stays does not guard the store";
    }
}

TEST_F(OneProgram, after_one_was_killed_the_next_starts) {
    startAndWaitForTheName();
    program.kill();
    startAndWaitForTheName();
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, a_break_is_taken_and_skipped_from_outside) {
    startAndWaitForTheName();
    act("take-micro-break");
    act("skip");
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(program.storedToday(QStringLiteral("skipped")), 1);
}

TEST_F(OneProgram, an_update_from_the_command_line_beside_it_leaves_its_store_alone) {
    QFile store(program.storePath());
    ASSERT_TRUE(store.open(QFile::WriteOnly));
    store.write(R"({"didOnboard": true, "autoUpdate": false})");
    store.close();
    startAndWaitForTheName();
    EXPECT_EQ(program.run({QStringLiteral("--update-now")}).status, 1);
    EXPECT_FALSE(program.stored().contains(u"lastUpdateCheck"));
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, the_loss_of_the_session_bus_does_no_harm) {
    startAndWaitForTheName();
    bus.reset();
    EXPECT_FALSE(waitUntil([this] { return !program.isRunning(); }, 3000)) << "the program ended by itself";
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, the_store_is_on_disk_before_the_machine_sleeps) {
    MockLogind logind;
    program.environment().insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), logind.address());
    startAndWaitForTheName();
    ASSERT_TRUE(waitUntil([&] { return logind.locks().size() == 1; }));
    act("take-micro-break");
    act("skip");
    logind.goToSleep();
    ASSERT_TRUE(waitUntil([&] { return logind.locks().isEmpty(); }));
    program.kill(); // the battery ran empty
    EXPECT_EQ(program.storedToday(QStringLiteral("skipped")), 1);
}

} // namespace pavonel::test
