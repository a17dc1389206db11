#include "Platform/Linux/Bus/MutterIdleTime.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>

namespace pavonel {

namespace {

const QString service = QStringLiteral("org.gnome.Mutter.IdleMonitor");
const QString path = QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core");

/// Without input for so long, the user counts as idle since the last of it.
constexpr qulonglong untilIdle = 2000; // milliseconds
constexpr Seconds millisecond = 0.001;

} // namespace

MutterIdleTime::MutterIdleTime(const QDBusConnection &session)
    : session_(session), monitor_(service, session_, QDBusServiceWatcher::WatchForOwnerChange) {
    if (!session_.isConnected())
        return;
    session_.connect(service, path, service, QStringLiteral("WatchFired"), this,
                     SLOT(noticeFired(uint, QDBusMessage)));
    connect(&monitor_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { begin(owner); });
    begin(session_.interface()->serviceOwner(service).value());
}

void MutterIdleTime::begin(const QString &owner) {
    owner_ = owner;
    idleWatch_ = activeWatch_ = 0;
    sinceIdle_.invalidate();
    if (!owner_.isEmpty())
        addWatch("AddIdleWatch", {untilIdle}, &MutterIdleTime::idleWatch_);
}

void MutterIdleTime::addWatch(const char *method, const QVariantList &arguments,
                              uint MutterIdleTime::*watch) {
    QDBusMessage call = QDBusMessage::createMethodCall(owner_, path, service, QString::fromLatin1(method));
    call.setArguments(arguments);
    auto *answer = new QDBusPendingCallWatcher(session_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, watch, asked = owner_] {
        answer->deleteLater();
        const QDBusMessage reply = answer->reply();
        if (asked == owner_ && reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"u")
            this->*watch = reply.arguments().value(0).toUInt();
    });
}

/// Numbers of watches begin with 1. That of activity fires once.
void MutterIdleTime::noticeFired(uint watch, const QDBusMessage &signal) {
    if (watch == 0 || signal.service() != owner_)
        return;
    if (watch == activeWatch_) {
        activeWatch_ = 0;
        sinceIdle_.invalidate();
    } else if (watch == idleWatch_ && !sinceIdle_.isValid()) {
        sinceIdle_.start();
        addWatch("AddUserActiveWatch", {}, &MutterIdleTime::activeWatch_);
    }
}

/// The loss of a bus is told by nobody.
Seconds MutterIdleTime::idleSeconds() {
    if (!sinceIdle_.isValid() || !session_.isConnected())
        return 0;
    return static_cast<Seconds>(sinceIdle_.elapsed() + static_cast<qint64>(untilIdle)) * millisecond;
}

QString MutterIdleTime::limitation() const {
    return idleWatch_ != 0 && session_.isConnected()
               ? QString()
               : QStringLiteral("This desktop does not tell how long you have been away.");
}

} // namespace pavonel
