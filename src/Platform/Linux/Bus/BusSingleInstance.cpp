#include "Platform/Linux/Bus/BusSingleInstance.h"

#include "Platform/Linux/Bus/ApplicationInterface.h"
#include "Platform/Linux/Bus/OurName.h"
#include "Platform/Linux/Bus/StatusInterface.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QThread>

#include <utility>

namespace pavonel {

namespace {

using namespace ourName;

constexpr int timeout = 5000; // milliseconds, for the other one's answer

/// For one that is on its way out, whose name and lock go one after the other, and for one that only borrows
/// the store: a disk takes its time.
constexpr int tries = 60;
constexpr unsigned long betweenTries = 50; // milliseconds

QVariantMap platformData() {
    QVariantMap data;
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    if (!token.isEmpty())
        data.insert(QStringLiteral("activation-token"), token);
    return data;
}

} // namespace

BusSingleInstance::BusSingleInstance(const QDBusConnection &bus, QString lockPath)
    : bus_(bus), lockPath_(std::move(lockPath)) {
    new ApplicationInterface(&exported_, bus_, *this);
    publisher_ = new StatusInterface(&exported_, bus_, path);
}

BusSingleInstance::~BusSingleInstance() {
    if (hasName_)
        bus_.interface()->unregisterService(service);
}

QString BusSingleInstance::limitation() const {
    return hasName_ ? QString() : QStringLiteral("Other programs cannot reach Pavonel here.");
}

SingleInstance::Role BusSingleInstance::claim() {
    Name name = takeName();
    for (int i = 0; name == Name::anothers && i < tries; ++i) {
        const Answer answer = activateOther();
        if (answer != Answer::gone)
            return answer == Answer::given ? Role::later : Role::laterUnreached;
        QThread::msleep(betweenTries);
        name = takeName();
    }
    if (name != Name::anothers && takeLock())
        return Role::first;
    return Role::laterUnreached;
}

void BusSingleInstance::onReopen(std::function<void()> reopen) {
    reopen_ = std::move(reopen);
    if (std::exchange(wasReopened_, false))
        reopen_();
}

void BusSingleInstance::onAction(std::function<void(OutsideAction)> act) {
    act_ = std::move(act);
    for (const OutsideAction action : std::exchange(waiting_, {}))
        act_(action);
}

/// Qt passes calls on from when the event loop runs, in their order and that of the bus's answers to us.
void BusSingleInstance::afterWaitingCalls(std::function<void()> then) {
    const auto ask = [this, then = std::move(then)] {
        const QString bus = QStringLiteral("org.freedesktop.DBus");
        const auto question = QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"),
                                                             bus, QStringLiteral("GetId"));
        auto *watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), &exported_);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &exported_, then);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, &QObject::deleteLater);
    };
    QMetaObject::invokeMethod(&exported_, ask, Qt::QueuedConnection);
}

StatusPublisher &BusSingleInstance::publisher() {
    return *publisher_;
}

void BusSingleInstance::reopen() {
    if (reopen_)
        reopen_();
    else
        wasReopened_ = true;
}

void BusSingleInstance::act(OutsideAction action) {
    if (act_)
        act_(action);
    else
        waiting_.push_back(action);
}

/// The object comes first, so that whoever sees the name finds it.
BusSingleInstance::Name BusSingleInstance::takeName() {
    if (!bus_.isConnected())
        return Name::unavailable;
    bus_.registerObject(path, &exported_);
    const auto reply = bus_.interface()->registerService(service, QDBusConnectionInterface::DontQueueService,
                                                         QDBusConnectionInterface::DontAllowReplacement);
    hasName_ = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (hasName_)
        return Name::ours;
    return reply.isValid() ? Name::anothers : Name::unavailable;
}

BusSingleInstance::Answer BusSingleInstance::activateOther() {
    QDBusMessage activate =
        QDBusMessage::createMethodCall(service, path, ApplicationInterface::name, QStringLiteral("Activate"));
    activate << platformData();
    activate.setAutoStartService(false);
    const QDBusMessage reply = bus_.call(activate, QDBus::Block, timeout);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return Answer::given;
    return bus_.interface()->isServiceRegistered(service) ? Answer::none : Answer::gone;
}

bool BusSingleInstance::takeLock() {
    for (int i = 0; i < tries; ++i) {
        lock_ = std::make_unique<FileLock>(lockPath_);
        if (lock_->state() != FileLock::State::takenByAnother)
            return true; // without a lock there is no writing here either
        QThread::msleep(betweenTries);
    }
    return false;
}

} // namespace pavonel
