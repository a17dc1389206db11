#include "Platform/Linux/Bus/BusRunningPavonel.h"
#include "Platform/Linux/Bus/BusSingleInstance.h"
#include "support/MessageBus.h"
#include "support/Printing.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <limits>
#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Facts = Status::Facts;

const QString service = QStringLiteral("org.pavonel.Pavonel");
const QString path = QStringLiteral("/org/pavonel/Pavonel");
const QString interface = QStringLiteral("org.pavonel.Pavonel1");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

/// Writes down what is asked of it.
struct FakeRemoteControl final : RemoteControl {
    Status current;
    QStringList wishes;
    Outcome outcome;

    Status status() const override { return current; }
    Outcome takeMicroBreak() override { return note(QStringLiteral("micro")); }
    Outcome takeLongBreak() override { return note(QStringLiteral("long")); }
    Outcome skip() override { return note(QStringLiteral("skip")); }
    Outcome postpone(qint64 seconds) override { return note(QStringLiteral("postpone %1").arg(seconds)); }
    Outcome pause(std::optional<qint64> seconds) override {
        return note(seconds ? QStringLiteral("pause %1").arg(*seconds) : QStringLiteral("pause"));
    }
    Outcome resume() override { return note(QStringLiteral("resume")); }

private:
    Outcome note(const QString &wish) {
        wishes.append(wish);
        return outcome;
    }
};

Status someStatus() {
    Status status;
    status.facts.phase = QStringLiteral("counting");
    status.facts.next =
        Facts::Next{QStringLiteral("micro"), QStringLiteral("Micro break"), 1'800'000'000, {}};
    status.facts.today = {4, 3, 2, 1};
    status.line = QStringLiteral("Micro break: 10:00");
    status.screenSeconds = 3600;
    status.breakSeconds = 60;
    return status;
}

/// The program's side and, on a connection of its own, another program's.
class StatusInterfaceTest : public testing::Test {
protected:
    StatusInterfaceTest() {
        EXPECT_EQ(program->claim(), SingleInstance::Role::first);
        control.current = someStatus();
        program->publisher().serve(&control);
    }
    ~StatusInterfaceTest() override {
        for (const char *name : {"program", "outsider"})
            QDBusConnection::disconnectFromBus(QString::fromUtf8(name));
    }

    QDBusConnection connect(const char *name) const {
        return QDBusConnection::connectToBus(bus.address(), QString::fromUtf8(name));
    }

    QDBusMessage ask(const QString &of, const char *method, const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, of, QString::fromUtf8(method));
        message.setArguments(arguments);
        const QDBusPendingCall call = outsider.asyncCall(message);
        EXPECT_TRUE(waitUntil([&] { return call.isFinished(); })) << method;
        return call.reply();
    }
    QDBusMessage call(const char *method, const QVariantList &arguments = {}) {
        return ask(interface, method, arguments);
    }
    QVariantMap all() {
        return qdbus_cast<QVariantMap>(ask(properties, "GetAll", {interface}).arguments().value(0));
    }

    void expectRefusal(const QDBusMessage &reply) {
        EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage) << reply.member().toStdString();
        EXPECT_FALSE(reply.errorMessage().isEmpty());
        EXPECT_EQ(control.wishes, QStringList());
    }

    const MessageBus bus;
    QTemporaryDir folder;
    QDBusConnection outsider = connect("outsider");
    FakeRemoteControl control;
    std::optional<BusSingleInstance> program{std::in_place, connect("program"),
                                             folder.filePath(QStringLiteral("lock"))};
};

/// Receives what is told of changes.
class Listener : public QObject {
    Q_OBJECT

public:
    explicit Listener(QDBusConnection bus) {
        bus.connect(service, path, properties, QStringLiteral("PropertiesChanged"), this,
                    SLOT(note(QString, QVariantMap, QStringList)));
    }

    std::vector<QVariantMap> heard;

public Q_SLOTS:
    void note(const QString &of, const QVariantMap &changed, const QStringList &) {
        EXPECT_EQ(of, interface);
        heard.push_back(changed);
    }
};

} // namespace

TEST_F(StatusInterfaceTest, the_properties_tell_the_status) {
    const QVariantMap told = all();
    EXPECT_EQ(told.value(QStringLiteral("Phase")), QStringLiteral("counting"));
    EXPECT_EQ(told.value(QStringLiteral("NextKind")), QStringLiteral("micro"));
    EXPECT_EQ(told.value(QStringLiteral("NextDue")), qlonglong{1'800'000'000});
    EXPECT_EQ(told.value(QStringLiteral("TodaySkipped")), 1);
    EXPECT_EQ(told.value(QStringLiteral("BreakEnds")), qlonglong{0});
    EXPECT_EQ(told.value(QStringLiteral("Line")), QStringLiteral("Micro break: 10:00"));
    const QDBusMessage one = ask(properties, "Get", {interface, QStringLiteral("TodayScreenSeconds")});
    EXPECT_EQ(qvariant_cast<QDBusVariant>(one.arguments().value(0)).variant(), qlonglong{3600});
}

TEST_F(StatusInterfaceTest, a_change_is_told_with_what_changed_and_nothing_else) {
    Listener listener(outsider);
    control.current.facts.phase = QStringLiteral("paused");
    control.current.facts.next->due = std::nullopt;
    control.current.facts.next->remaining = 600;
    control.current.screenSeconds = 3601;
    control.current.line = QStringLiteral("Paused");
    program->publisher().tellChange();
    ASSERT_TRUE(waitUntil([&] { return listener.heard.size() == 1; }));
    EXPECT_EQ(listener.heard[0], (QVariantMap{{QStringLiteral("Phase"), QStringLiteral("paused")},
                                              {QStringLiteral("NextDue"), qlonglong{0}},
                                              {QStringLiteral("NextRemaining"), qlonglong{600}}}));
}

TEST_F(StatusInterfaceTest, every_command_arrives) {
    EXPECT_EQ(call("TakeMicroBreak").type(), QDBusMessage::ReplyMessage);
    call("TakeLongBreak");
    call("Skip");
    call("Postpone", {60u});
    call("Pause", {1800u});
    call("PauseIndefinitely");
    call("Resume");
    EXPECT_EQ(control.wishes.join(u','),
              QStringLiteral("micro,long,skip,postpone 60,pause 1800,pause,resume"));
}

TEST_F(StatusInterfaceTest, a_refused_wish_is_an_error_with_its_sentence) {
    control.outcome = Refusal{Refusal::Kind::notNow, QStringLiteral("A break is running.")};
    QDBusMessage reply = call("TakeLongBreak");
    EXPECT_EQ(reply.errorName(), QStringLiteral("org.pavonel.Pavonel1.Error.Refused"));
    EXPECT_EQ(reply.errorMessage(), QStringLiteral("A break is running."));
    control.outcome = Refusal{Refusal::Kind::badArgument, QStringLiteral("Too long.")};
    reply = call("Pause", {4'000'000'000u});
    EXPECT_EQ(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
}

TEST_F(StatusInterfaceTest, calls_that_are_wrong_in_form_are_refused) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expectRefusal(call("Nonsense"));
    expectRefusal(call("Pause"));
    for (const QVariant &seconds :
         {QVariant(-5), QVariant(nan), QVariant(1e300), QVariant(qlonglong{60}),
          QVariant(QStringLiteral("60")), QVariant(true), QVariant::fromValue(QDBusVariant(60u))}) {
        expectRefusal(call("Pause", {seconds}));
        expectRefusal(call("Postpone", {seconds}));
    }
    expectRefusal(call("Pause", {60u, 60u}));
    expectRefusal(call("Skip", {QStringLiteral("now")}));
    expectRefusal(call("Resume", {QString(1'000'000, u'x')}));
    expectRefusal(ask(properties, "Get", {interface, QStringLiteral("Nonsense")}));
    expectRefusal(ask(
        properties, "Set",
        {interface, QStringLiteral("Phase"), QVariant::fromValue(QDBusVariant(QStringLiteral("paused")))}));
}

TEST_F(StatusInterfaceTest, with_nobody_to_answer_nothing_is_told_and_nothing_done) {
    program->publisher().serve(nullptr);
    EXPECT_EQ(all().value(QStringLiteral("Phase")), QString());
    expectRefusal(call("Skip"));
}

TEST_F(StatusInterfaceTest, the_introspection_names_what_there_is) {
    const QString xml = ask(QStringLiteral("org.freedesktop.DBus.Introspectable"), "Introspect", {})
                            .arguments()
                            .value(0)
                            .toString();
    const qsizetype begin = xml.indexOf(QStringLiteral("<interface name=\"%1\">").arg(interface));
    ASSERT_GE(begin, 0);
    const QString ours = xml.sliced(begin, xml.indexOf(QStringLiteral("</interface>"), begin) - begin);
    const QVariantMap told = all();
    QStringList named;
    static const QRegularExpression property(QStringLiteral(R"re(<property name="(\w+)" type="(\w)")re"));
    for (auto match = property.globalMatch(ours); match.hasNext();) {
        const auto found = match.next();
        const QVariant value = told.value(found.captured(1));
        named.append(found.captured(1));
        const char *const type = value.typeId() == QMetaType::QString ? "s"
                                 : value.typeId() == QMetaType::Int   ? "i"
                                                                      : "x";
        EXPECT_EQ(found.captured(2), QString::fromUtf8(type)) << found.captured(1).toStdString();
    }
    named.sort();
    EXPECT_EQ(named, told.keys());
    for (const char *method :
         {"TakeMicroBreak", "TakeLongBreak", "Skip", "Postpone", "Pause", "PauseIndefinitely", "Resume"})
        EXPECT_TRUE(ours.contains(QStringLiteral("<method name=\"%1\"").arg(QString::fromUtf8(method))));
}

/// The process of the command line, beside that of the program: the bus is asked without a turn of our loop.
class RunningPavonelTest : public testing::Test {
protected:
    ~RunningPavonelTest() override { QDBusConnection::disconnectFromBus(QStringLiteral("command")); }

    QDBusConnection connect(const MessageBus &to) const {
        return QDBusConnection::connectToBus(to.address(), QStringLiteral("command"));
    }
};

TEST_F(RunningPavonelTest, is_never_started_by_looking_for_it) {
    QTemporaryDir folder;
    const QString trace = folder.filePath(QStringLiteral("started"));
    writeFile(folder.filePath(QStringLiteral("pavonel.service")),
              "[D-BUS Service]\nName=org.pavonel.Pavonel\nExec=/usr/bin/touch " + trace.toUtf8() + '\n');
    const MessageBus bus(folder.path());
    QDBusConnection connection = connect(bus);
    BusRunningPavonel running(connection);
    EXPECT_EQ(std::get<RunningPavonel::Failure>(running.status()), RunningPavonel::Failure::notRunning);
    running.follow([] {});
    const auto isStarted = [&] { return QFile::exists(trace); };
    EXPECT_FALSE(waitUntil(isStarted, 500));
    connection.send(QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Skip")));
    EXPECT_TRUE(waitUntil(isStarted)) << "nothing could have been seen";
}

TEST_F(RunningPavonelTest, is_not_running_without_a_bus) {
    BusRunningPavonel running(QDBusConnection(QStringLiteral("no such bus")));
    EXPECT_EQ(std::get<RunningPavonel::Failure>(running.status()), RunningPavonel::Failure::notRunning);
    running.follow([] {});
}

TEST_F(RunningPavonelTest, does_not_answer_when_it_knows_of_no_status) {
    const MessageBus bus;
    QDBusConnection connection = connect(bus);
    ASSERT_TRUE(connection.registerService(service));
    BusRunningPavonel running(connection);
    EXPECT_EQ(std::get<RunningPavonel::Failure>(running.status()), RunningPavonel::Failure::noAnswer);
}

} // namespace pavonel::test

#include "StatusInterfaceTest.moc"
