#include "Platform/Linux/Bus/BusRunningPavonel.h"

#include "Platform/Linux/Bus/OurName.h"
#include "Platform/Linux/Bus/StatusInterface.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <utility>

namespace pavonel {

namespace {

using Facts = Status::Facts;

const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr int timeout = 5000; // milliseconds, for its answer

/// 0 stands for none.
std::optional<qint64> moment(const QVariant &seconds) {
    const qint64 value = seconds.toLongLong();
    return value == 0 ? std::nullopt : std::optional(value);
}

std::optional<Facts::Next> nextOf(const QVariantMap &properties) {
    const QString kind = properties.value(QStringLiteral("NextKind")).toString();
    if (kind.isEmpty())
        return {};
    Facts::Next next{kind,
                     properties.value(QStringLiteral("NextTitle")).toString(),
                     moment(properties.value(QStringLiteral("NextDue"))),
                     {}};
    if (!next.due)
        next.remaining = properties.value(QStringLiteral("NextRemaining")).toLongLong();
    return next;
}

std::optional<Facts::Running> runningOf(const QVariantMap &properties) {
    const QString kind = properties.value(QStringLiteral("BreakKind")).toString();
    if (kind.isEmpty())
        return {};
    return Facts::Running{kind, properties.value(QStringLiteral("BreakTitle")).toString(),
                          properties.value(QStringLiteral("BreakEnds")).toLongLong()};
}

Status statusOf(const QVariantMap &properties) {
    const auto number = [&](const char *name) { return properties.value(QString::fromLatin1(name)).toInt(); };
    Status status;
    status.facts.phase = properties.value(QStringLiteral("Phase")).toString();
    status.facts.hold = properties.value(QStringLiteral("Hold")).toString();
    status.facts.next = nextOf(properties);
    status.facts.running = runningOf(properties);
    status.facts.pauseEnds = moment(properties.value(QStringLiteral("PauseEnds")));
    status.facts.today = {number("TodayMicro"), number("TodayLong"), number("TodayPlanned"),
                          number("TodaySkipped")};
    status.line = properties.value(QStringLiteral("Line")).toString();
    status.screenSeconds = properties.value(QStringLiteral("TodayScreenSeconds")).toLongLong();
    status.breakSeconds = properties.value(QStringLiteral("TodayBreakSeconds")).toLongLong();
    return status;
}

} // namespace

BusRunningPavonel::BusRunningPavonel(const QDBusConnection &bus) : bus_(bus) {}

RunningPavonel::Answer BusRunningPavonel::status() {
    if (!bus_.isConnected() || !bus_.interface()->isServiceRegistered(ourName::service))
        return Failure::notRunning;
    QDBusMessage question = QDBusMessage::createMethodCall(ourName::service, ourName::path,
                                                           propertiesInterface, QStringLiteral("GetAll"));
    question << StatusInterface::name;
    question.setAutoStartService(false);
    const QDBusMessage reply = bus_.call(question, QDBus::Block, timeout);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return statusOf(qdbus_cast<QVariantMap>(reply.arguments().value(0)));
    const bool isGone = !bus_.isConnected() || !bus_.interface()->isServiceRegistered(ourName::service);
    return isGone ? Failure::notRunning : Failure::noAnswer;
}

void BusRunningPavonel::follow(std::function<void()> changed) {
    changed_ = std::move(changed);
    bus_.connect(ourName::service, ourName::path, propertiesInterface, QStringLiteral("PropertiesChanged"),
                 {StatusInterface::name}, QString(), this, SLOT(noteChange()));
    bus_.connect(QString(), QString(), QStringLiteral("org.freedesktop.DBus"),
                 QStringLiteral("NameOwnerChanged"), {ourName::service}, QString(), this, SLOT(noteChange()));
    bus_.connect(QString(), QString(), QStringLiteral("org.freedesktop.DBus.Local"),
                 QStringLiteral("Disconnected"), this, SLOT(noteChange()));
}

void BusRunningPavonel::noteChange() {
    changed_();
}

} // namespace pavonel
