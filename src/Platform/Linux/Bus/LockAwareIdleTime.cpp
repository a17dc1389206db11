#include "Platform/Linux/Bus/LockAwareIdleTime.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <algorithm>
#include <ctime>
#include <utility>

#include <unistd.h>

namespace pavonel {

namespace {

const QString logindService = QStringLiteral("org.freedesktop.login1");
const QString sessionInterface = QStringLiteral("org.freedesktop.login1.Session");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString lockedHint = QStringLiteral("LockedHint");

Seconds secondsSinceBoot() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return static_cast<Seconds>(time.tv_sec) + static_cast<Seconds>(time.tv_nsec) / 1e9;
}

/// The path of our own session among those of the login manager: the one that the environment names, else one
/// of this user with a seat, else any of this user.
QString ownSession(const QDBusArgument &sessions) {
    const QString ownId = qEnvironmentVariable("XDG_SESSION_ID");
    QString best;
    int bestRank = 0;
    for (sessions.beginArray(); !sessions.atEnd();) {
        QString id;
        QString user;
        QString seat;
        uint userId = 0;
        QDBusObjectPath path;
        sessions.beginStructure();
        sessions >> id >> userId >> user >> seat >> path;
        sessions.endStructure();
        if (userId != ::getuid())
            continue;
        const int rank = id == ownId ? 3 : seat.isEmpty() ? 1 : 2;
        if (rank > bestRank) {
            bestRank = rank;
            best = path.path();
        }
    }
    sessions.endArray();
    return best;
}

/// Calls `done` with the answer unless it is an error or `owner` is gone by then.
template <class Done>
void ask(const QDBusConnection &bus, const QDBusMessage &question, QObject *owner, Done done) {
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner, [watcher, done] {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        if (reply.type() == QDBusMessage::ReplyMessage)
            done(reply);
    });
}

QDBusMessage call(const QString &path, const QString &interface, const QString &method) {
    QDBusMessage message = QDBusMessage::createMethodCall(logindService, path, interface, method);
    message.setAutoStartService(false);
    return message;
}

} // namespace

LockAwareIdleTime::LockAwareIdleTime(std::unique_ptr<IdleTime> input, const QDBusConnection &system,
                                     const QDBusConnection &session)
    : input_(std::move(input)), system_(system), session_(session),
      logind_(logindService, system_, QDBusServiceWatcher::WatchForOwnerChange) {
    screenSavers_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    screenSavers_.setConnection(session_);
    connect(&screenSavers_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &screenSaver) { doubt(screenSaver); });
    for (const char *kind : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                             "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver", "org.xfce.ScreenSaver"}) {
        if (!session_.isConnected())
            break;
        const QString screenSaver = QString::fromLatin1(kind);
        screenSavers_.addWatchedService(screenSaver);
        session_.connect(QString(), QString(), screenSaver, QStringLiteral("ActiveChanged"), this,
                         SLOT(screenSaverChanged(bool, QDBusMessage)));
    }
    connect(&logind_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { findSession(); });
    findSession();
}

Seconds LockAwareIdleTime::idleSeconds() {
    updateLock(); // the loss of a bus is told by nobody
    const Seconds sinceInput = input_->idleSeconds();
    return lockedAt_ ? std::max(sinceInput, secondsSinceBoot() - *lockedAt_) : sinceInput;
}

void LockAwareIdleTime::findSession() {
    forgetSession();
    if (!system_.isConnected())
        return;
    const auto list = call(QStringLiteral("/org/freedesktop/login1"),
                           QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("ListSessions"));
    ask(system_, list, this, [this](const QDBusMessage &reply) {
        const QVariant sessions = reply.arguments().value(0);
        if (reply.signature() == u"a(susso)")
            watchSession(ownSession(sessions.value<QDBusArgument>()));
    });
}

void LockAwareIdleTime::watchSession(const QString &path) {
    forgetSession();
    if (path.isEmpty())
        return;
    sessionPath_ = path;
    system_.connect(logindService, path, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                    SLOT(sessionChanged(QString, QVariantMap)));
    auto get = call(path, propertiesInterface, QStringLiteral("Get"));
    get << sessionInterface << lockedHint;
    ask(system_, get, this, [this](const QDBusMessage &reply) {
        const auto value = reply.arguments().value(0).value<QDBusVariant>();
        sessionChanged(sessionInterface, {{lockedHint, value.variant()}});
    });
}

void LockAwareIdleTime::forgetSession() {
    if (!sessionPath_.isEmpty())
        system_.disconnect(logindService, sessionPath_, propertiesInterface,
                           QStringLiteral("PropertiesChanged"), this,
                           SLOT(sessionChanged(QString, QVariantMap)));
    sessionPath_.clear();
    hinted_ = isHintKept_ = false;
    updateLock();
}

void LockAwareIdleTime::sessionChanged(const QString &interface, const QVariantMap &changed) {
    const auto hint = changed.constFind(lockedHint);
    if (interface != sessionInterface || hint == changed.constEnd())
        return;
    hinted_ = hint->toBool();
    isHintKept_ = isHintKept_ || hinted_;
    updateLock();
}

void LockAwareIdleTime::screenSaverChanged(bool active, const QDBusMessage &message) {
    if (active)
        believe(message.interface(), message.service());
    else
        doubt(message.interface());
}

/// The sender may have left since, or never have been a screen saver.
void LockAwareIdleTime::believe(const QString &screenSaver, const QString &sender) {
    claims_[screenSaver] = sender;
    auto question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    question << screenSaver;
    ask(session_, question, this, [this, screenSaver, sender](const QDBusMessage &reply) {
        if (reply.arguments().value(0).toString() != sender || claims_.value(screenSaver) != sender)
            return;
        active_.insert(screenSaver);
        updateLock();
    });
}

void LockAwareIdleTime::doubt(const QString &screenSaver) {
    claims_.remove(screenSaver);
    active_.remove(screenSaver);
    updateLock();
}

void LockAwareIdleTime::updateLock() {
    const bool isHinted = hinted_ && system_.isConnected();
    const bool isDenied = isHintKept_ && !isHinted && system_.isConnected();
    const bool isLocked = isHinted || (!isDenied && !active_.isEmpty() && session_.isConnected());
    if (!isLocked)
        lockedAt_.reset();
    else if (!lockedAt_)
        lockedAt_ = secondsSinceBoot();
}

} // namespace pavonel
