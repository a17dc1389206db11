#include "EndToEnd/ProgramAtHome.h"
#include "Wayland/FakeDesktop.h"
#include "support/Compositor.h"
#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QElapsedTimer>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using namespace Qt::StringLiterals;

/// Asks the program for its breaks of today, again as soon as it has answered: its main loop does that.
class Questioner : public QObject {
public:
    explicit Questioner(const QDBusConnection &bus) : bus_(bus) { ask(); }

    int breaks() const { return breaks_; }
    /// The longest time that it took to answer since it first did, in milliseconds.
    qint64 longest() const { return longest_; }

private:
    void ask() {
        auto question = QDBusMessage::createMethodCall(u"org.pavonel.Pavonel"_s, u"/org/pavonel/Pavonel"_s,
                                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
        question << u"org.pavonel.Pavonel1"_s << u"TodayMicro"_s;
        sinceAsked_.start();
        auto *answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
        connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
            answer->deleteLater();
            take(answer->reply());
            constexpr int pause = 5; // milliseconds
            QTimer::singleShot(pause, this, [this] { ask(); });
        });
    }
    void take(const QDBusMessage &reply) {
        if (reply.type() != QDBusMessage::ReplyMessage)
            return;
        breaks_ = reply.arguments().value(0).value<QDBusVariant>().variant().toInt();
        longest_ = std::max(longest_, sinceAsked_.elapsed());
    }

    QDBusConnection bus_;
    QElapsedTimer sinceAsked_;
    int breaks_ = 0;
    qint64 longest_ = 0;
};

struct Fault {
    const char *name;
    FakeDesktop::Manners manners;
};

void PrintTo(const Fault &fault, std::ostream *stream) {
    *stream << fault.name;
}

QProcessEnvironment environmentOn(const FakeDesktop &desktop, const MessageBus &bus, const QString &folder) {
    QProcessEnvironment environment = withoutDesktop();
    environment.insert(u"WAYLAND_DISPLAY"_s,
                       qEnvironmentVariable("XDG_RUNTIME_DIR") + u'/' + QLatin1String(desktop.socket()));
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
    overlookLeaksOfQt(environment, folder);
    return environment;
}

class BreakOnErringLayerShell : public testing::TestWithParam<Fault> {
protected:
    BreakOnErringLayerShell() {
        program.store({{u"microInterval"_s, 2}, {u"microDuration"_s, 2}, {u"preNotifySeconds"_s, 1}});
    }
    ~BreakOnErringLayerShell() override { QDBusConnection::disconnectFromBus(u"questioner"_s); }

    QTemporaryDir folder;
    MessageBus bus;
    FakeDesktop desktop{GetParam().manners};
    ProgramAtHome program{environmentOn(desktop, bus, folder.path())};
};

TEST_P(BreakOnErringLayerShell, ends_as_ever_and_the_next_one_comes) {
    program.startProgram();
    Questioner questioner(QDBusConnection::connectToBus(bus.address(), u"questioner"_s));
    EXPECT_TRUE(waitUntil([&] { return questioner.breaks() == 3 || !program.isRunning(); }));
    EXPECT_EQ(program.endProgram(SIGTERM), 0);
    EXPECT_EQ(program.statistics()[u"micro"_s].toInt(), 3);
    EXPECT_GT(desktop.asked(), 0);
    RecordProperty("longest", static_cast<int>(questioner.longest()));
    std::printf("    the longest answer: %lld ms\n", questioner.longest());
}

using Names = FakeDesktop::Names;
constexpr std::optional<int> never;

/// Times are in milliseconds; a break fades in over 450 and out over 300.
const Fault faults[] = {
    {"none", {}},
    {"closes_at_once", {.closesAfter = 0}},
    {"closes_before_it_configures", {.configuresAfter = 20, .closesAfter = 0}},
    {"closes_once_it_is_shown", {.closesAfter = 50}},
    {"closes_while_it_fades_in", {.closesAfter = 300}},
    {"closes_when_the_ring_moves", {.closesAfter = 600}},
    {"closes_while_it_fades_out", {.closesAfter = 2100}},
    {"never_configures", {.configuresAfter = never}},
    {"never_configures_and_closes", {.configuresAfter = never, .closesAfter = 700}},
    {"configures_late", {.configuresAfter = 700}},
    {"configures_after_the_break", {.configuresAfter = 2500}},
    {"configures_without_a_size", {.surfaceSize = {0, 0}}},
    {"configures_with_an_absurd_size", {.surfaceSize = {1, 2'000'000'000}}},
    {"has_outputs_without_names", {.outputNames = Names::missing}},
    {"has_no_output", {.outputs = 0}},
    {"takes_outputs_away_between_request_and_answer", {.configuresAfter = 50, .takesOutputsAway = true}},
    {"takes_outputs_away_and_closes", {.configuresAfter = 50, .closesAfter = 0, .takesOutputsAway = true}},
    {"has_no_seat", {.seats = 0}},
    {"has_two_seats", {.seats = 2}},
};

class BreakOnNamelessOutputs : public BreakOnErringLayerShell {};

TEST_P(BreakOnNamelessOutputs, covers_each_of_them) {
    program.startProgram();
    EXPECT_TRUE(waitUntil([&] { return desktop.wished() == std::set{0, 1}; }));
}

INSTANTIATE_TEST_SUITE_P(, BreakOnNamelessOutputs,
                         testing::Values(Fault{"without_names", {.outputNames = Names::missing}}));

INSTANTIATE_TEST_SUITE_P(, BreakOnErringLayerShell, testing::ValuesIn(faults),
                         [](const auto &each) { return std::string(each.param.name); });

} // namespace

} // namespace pavonel::test
