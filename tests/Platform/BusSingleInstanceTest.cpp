#include "Platform/Linux/Bus/BusSingleInstance.h"

#include "support/InChild.h"
#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

using Role = SingleInstance::Role;

const QString service = QStringLiteral("org.pavonel.Pavonel");
const QString path = QStringLiteral("/org/pavonel/Pavonel");
const QString interface = QStringLiteral("org.freedesktop.Application");

/// Stands for processes of one user; each has a connection of its own.
struct BusSingleInstanceTest : testing::Test {
    ~BusSingleInstanceTest() override {
        for (const QString &name : connections)
            QDBusConnection::disconnectFromBus(name);
    }

    QDBusConnection connect(const MessageBus &to) {
        connections.append(QStringLiteral("process %1").arg(connections.size()));
        return QDBusConnection::connectToBus(to.address(), connections.last());
    }
    static QDBusConnection noBus() { return QDBusConnection(QStringLiteral("no such bus")); }

    QDBusPendingCall call(const QString &method, const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        return outsider.asyncCall(message);
    }
    QDBusPendingCall act(const char *action) {
        return call(QStringLiteral("ActivateAction"),
                    {QString::fromUtf8(action), QVariantList(), QVariantMap()});
    }

    MessageBus bus;
    QTemporaryDir folder;
    QString lock = folder.filePath(QStringLiteral("config/pavonel/lock"));
    QStringList connections;
    QDBusConnection outsider = connect(bus);
    std::optional<BusSingleInstance> first{std::in_place, connect(bus), lock};
};

} // namespace

TEST_F(BusSingleInstanceTest, the_first_one_has_the_name_and_the_lock) {
    EXPECT_EQ(first->claim(), Role::first);
    EXPECT_TRUE(outsider.interface()->isServiceRegistered(service).value());
    EXPECT_EQ(FileLock(lock).state(), FileLock::State::takenByAnother);
    EXPECT_EQ(first->limitation(), QString());
}

TEST_F(BusSingleInstanceTest, a_later_one_has_the_first_come_to_the_front) {
    ASSERT_EQ(first->claim(), Role::first);
    int reopened = 0;
    first->onReopen([&] { ++reopened; });
    const QDBusPendingCall activation = call(QStringLiteral("Activate"), {QVariantMap()});
    EXPECT_TRUE(waitUntil([&] { return reopened == 1 && activation.isFinished(); }));
    EXPECT_FALSE(activation.isError());
}

TEST_F(BusSingleInstanceTest, what_comes_before_there_is_a_handler_waits_for_it) {
    ASSERT_EQ(first->claim(), Role::first);
    const QDBusPendingCall activation = call(QStringLiteral("Activate"), {QVariantMap()});
    const QDBusPendingCall action = act("skip");
    ASSERT_TRUE(waitUntil([&] { return activation.isFinished() && action.isFinished(); }));
    int reopened = 0;
    std::vector<OutsideAction> actions;
    first->onReopen([&] { ++reopened; });
    first->onAction([&](OutsideAction wanted) { actions.push_back(wanted); });
    EXPECT_EQ(reopened, 1);
    EXPECT_EQ(actions, std::vector{OutsideAction::skip});
}

TEST_F(BusSingleInstanceTest, opening_files_brings_it_to_the_front) {
    ASSERT_EQ(first->claim(), Role::first);
    int reopened = 0;
    first->onReopen([&] { ++reopened; });
    call(QStringLiteral("Open"), {QStringList{QStringLiteral("file:///x")}, QVariantMap()});
    EXPECT_TRUE(waitUntil([&] { return reopened == 1; }));
}

TEST_F(BusSingleInstanceTest, the_actions_of_the_desktop_entry_arrive) {
    ASSERT_EQ(first->claim(), Role::first);
    std::vector<OutsideAction> actions;
    first->onAction([&](OutsideAction wanted) { actions.push_back(wanted); });
    for (const char *action : {"take-micro-break", "take-long-break", "nonsense", "skip", "toggle-pause"})
        act(action);
    EXPECT_TRUE(waitUntil([&] { return actions.size() == 4; }));
    EXPECT_EQ(actions, (std::vector{OutsideAction::takeMicroBreak, OutsideAction::takeLongBreak,
                                    OutsideAction::skip, OutsideAction::togglePause}));
}

TEST_F(BusSingleInstanceTest, the_token_of_an_activation_is_kept_for_the_window) {
    ASSERT_EQ(first->claim(), Role::first);
    QByteArray token;
    first->onReopen([&] { token = qgetenv("XDG_ACTIVATION_TOKEN"); });
    call(QStringLiteral("Activate"),
         {QVariantMap{{QStringLiteral("activation-token"), QStringLiteral("t0ken")}}});
    EXPECT_TRUE(waitUntil([&] { return token == "t0ken"; }));
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

TEST_F(BusSingleInstanceTest, a_token_longer_than_any_real_one_is_dropped) {
    ASSERT_EQ(first->claim(), Role::first);
    std::vector<QByteArray> tokens;
    first->onReopen([&] { tokens.push_back(qgetenv("XDG_ACTIVATION_TOKEN")); });
    for (const qsizetype length : {4096, 4097})
        call(QStringLiteral("Activate"),
             {QVariantMap{{QStringLiteral("activation-token"), QString(length, u't')}}});
    EXPECT_TRUE(waitUntil([&] { return tokens.size() == 2; }));
    const QByteArray longest(4096, 't');
    EXPECT_EQ(tokens, std::vector<QByteArray>({longest, longest}));
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

/// A call with so many elements in each of its lists.
class AbsurdCall : public BusSingleInstanceTest, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Sizes, AbsurdCall, testing::Values(3, 200'000));

TEST_P(AbsurdCall, is_answered_with_an_error_and_a_sensible_one_is_not) {
    ASSERT_EQ(first->claim(), Role::first);
    int reopened = 0;
    int acted = 0;
    first->onReopen([&] { ++reopened; });
    first->onAction([&](OutsideAction) { ++acted; });
    const QVariantList few(1, 1);
    const QVariantList many(GetParam(), 1);
    const QStringList names(GetParam(), QStringLiteral("file:///x"));
    const QVariantMap none;
    QVariantMap map;
    for (int i = 0; i < GetParam(); ++i)
        map.insert(QString::number(i), i);
    const QString skip = QStringLiteral("skip");
    const std::vector<QDBusPendingCall> calls = {
        call(QStringLiteral("Activate"), {map}),
        call(QStringLiteral("Open"), {names, none}),
        call(QStringLiteral("Open"), {QStringList(), map}),
        call(QStringLiteral("ActivateAction"), {skip, many, none}),
        call(QStringLiteral("ActivateAction"), {skip, few, map}),
    };
    const bool absurd = GetParam() > 3;
    for (const QDBusPendingCall &each : calls) {
        ASSERT_TRUE(waitUntil([&] { return each.isFinished(); }));
        EXPECT_EQ(each.isError(), absurd);
        EXPECT_TRUE(!absurd || each.error().type() == QDBusError::LimitsExceeded);
    }
    EXPECT_EQ(reopened, absurd ? 0 : 3);
    EXPECT_EQ(acted, absurd ? 0 : 2);
}

TEST_F(BusSingleInstanceTest, a_call_with_other_arguments_than_its_own_is_refused) {
    ASSERT_EQ(first->claim(), Role::first);
    first->onReopen([] { ADD_FAILURE(); });
    first->onAction([](OutsideAction) { ADD_FAILURE(); });
    const QString skip = QStringLiteral("skip");
    const QVariantMap map;
    const std::vector<QDBusPendingCall> calls = {
        call(QStringLiteral("Activate"), {}),
        call(QStringLiteral("Activate"), {skip}),
        call(QStringLiteral("Activate"), {map, map}),
        call(QStringLiteral("Open"), {QStringList(), map, 1}),
        call(QStringLiteral("ActivateAction"), {skip}),
        call(QStringLiteral("ActivateAction"), {skip, QVariantList(), map, QVariantList(1000, 1)}),
    };
    for (const QDBusPendingCall &each : calls) {
        ASSERT_TRUE(waitUntil([&] { return each.isFinished(); }));
        EXPECT_EQ(each.error().type(), QDBusError::InvalidArgs) << each.error().message().toStdString();
    }
}

TEST_F(BusSingleInstanceTest, when_the_first_one_is_gone_the_next_is_the_first) {
    ASSERT_EQ(first->claim(), Role::first);
    first.reset();
    BusSingleInstance next(connect(bus), lock);
    EXPECT_EQ(next.claim(), Role::first);
}

TEST_F(BusSingleInstanceTest, without_a_bus_the_program_runs_and_the_lock_guards_the_store) {
    BusSingleInstance busless(noBus(), lock);
    EXPECT_EQ(busless.claim(), Role::first);
    EXPECT_FALSE(busless.limitation().isEmpty());
    BusSingleInstance later(noBus(), lock);
    EXPECT_EQ(later.claim(), Role::laterUnreached);
}

TEST_F(BusSingleInstanceTest, one_without_a_bus_and_one_with_a_bus_never_run_together) {
    BusSingleInstance busless(noBus(), lock);
    ASSERT_EQ(busless.claim(), Role::first);
    EXPECT_EQ(first->claim(), Role::laterUnreached);
}

TEST_F(BusSingleInstanceTest, two_on_different_buses_never_run_together) {
    ASSERT_EQ(first->claim(), Role::first);
    const MessageBus otherBus;
    BusSingleInstance other(connect(otherBus), lock);
    EXPECT_EQ(other.claim(), Role::laterUnreached);
}

TEST_F(BusSingleInstanceTest, where_no_lock_can_be_made_the_program_runs_all_the_same) {
    ASSERT_TRUE(QFile(folder.filePath(QStringLiteral("config"))).open(QFile::WriteOnly));
    EXPECT_EQ(first->claim(), Role::first);
}

TEST_F(BusSingleInstanceTest, a_lock_that_is_held_for_a_moment_is_waited_for) {
    std::optional<FileLock> borrowed(std::in_place, lock);
    ASSERT_EQ(borrowed->state(), FileLock::State::held);
    std::thread borrower([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        borrowed.reset();
    });
    EXPECT_EQ(first->claim(), Role::first);
    borrower.join();
}

TEST_F(BusSingleInstanceTest, the_lock_of_a_process_that_died_is_free) {
    inChild([this] {
        auto *held = new FileLock(lock);
        ::_exit(held->state() == FileLock::State::held ? 0 : 1);
    });
    EXPECT_EQ(first->claim(), Role::first);
}

TEST_F(BusSingleInstanceTest, the_lock_is_for_the_users_eyes_only) {
    ASSERT_EQ(first->claim(), Role::first);
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(lock).data(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

} // namespace pavonel::test
