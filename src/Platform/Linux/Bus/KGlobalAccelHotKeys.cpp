#include "Platform/Linux/Bus/KGlobalAccelHotKeys.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

#include <utility>

namespace pavonel {

namespace {

using namespace Qt::StringLiterals;

const auto service = u"org.kde.kglobalaccel"_s;
const auto component = u"pavonel"_s;
const auto componentPath = u"/component/pavonel"_s;
const auto componentInterface = u"org.kde.kglobalaccel.Component"_s;

QDBusMessage call(const char *method) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, u"/kglobalaccel"_s, u"org.kde.KGlobalAccel"_s, QString::fromLatin1(method));
    message.setAutoStartService(false);
    return message;
}

/// The component's and the shortcut's own name, and those for people.
QStringList actionOf(const ShortcutName &shortcut) {
    return {component, QString::fromLatin1(shortcut.name), u"Pavonel"_s, QString::fromLatin1(shortcut.title)};
}

int qtKeyOf(const UsKey &key) {
    int all = key.sign;
    for (const auto &[bit, modifier] :
         {std::pair(mac::control, Qt::ControlModifier), std::pair(mac::option, Qt::AltModifier),
          std::pair(mac::shift, Qt::ShiftModifier), std::pair(mac::command, Qt::MetaModifier)}) {
        if ((key.modifiers & bit) != 0)
            all |= static_cast<int>(modifier);
    }
    return all;
}

} // namespace

std::shared_ptr<KGlobalAccelHotKeys> KGlobalAccelHotKeys::make(const QDBusConnection &bus) {
    const auto *daemon = bus.interface();
    if (!daemon || !daemon->isServiceRegistered(u"org.kde.KWin"_s) || !daemon->isServiceRegistered(service))
        return nullptr;
    return std::shared_ptr<KGlobalAccelHotKeys>(new KGlobalAccelHotKeys(bus));
}

KGlobalAccelHotKeys::KGlobalAccelHotKeys(const QDBusConnection &bus)
    : bus_(bus), watcher_(service, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    bus_.connect(service, componentPath, componentInterface, u"globalShortcutPressed"_s, this,
                 SLOT(takePress(QString, QString)));
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                loseAll();
                if (!owner.isEmpty())
                    askForAll();
            });
    QTimer::singleShot(0, this, [this] { forgetUnused(); });
}

/// What it gives can be another combination than we asked for: one that the user has chosen in the system
/// settings. For one that belongs to somebody else it gives none.
void KGlobalAccelHotKeys::askFor(const Key &key) {
    constexpr uint present = 2;
    const ShortcutName *shortcut = shortcutName(key.identifier);
    if (!shortcut)
        return;
    bus_.send(call("doRegister") << actionOf(*shortcut));
    const auto question = call("setShortcut")
                          << actionOf(*shortcut) << QVariant::fromValue(QList<int>{qtKeyOf(key.combination)})
                          << present;
    auto *watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, number = key.number] {
        watcher->deleteLater();
        const QDBusPendingReply<QList<int>> given = *watcher;
        setHeld(number, !given.isError() && given.value().value(0) != 0);
    });
}

void KGlobalAccelHotKeys::giveBack(const Key &key) {
    if (const ShortcutName *shortcut = shortcutName(key.identifier))
        bus_.send(call("setInactive") << actionOf(*shortcut));
}

void KGlobalAccelHotKeys::forgetUnused() {
    if (!keys().empty())
        return;
    auto message = QDBusMessage::createMethodCall(service, componentPath, componentInterface, u"cleanUp"_s);
    message.setAutoStartService(false);
    bus_.send(message);
}

void KGlobalAccelHotKeys::takePress(const QString &from, const QString &action) {
    for (const Key &key : keys()) {
        const ShortcutName *shortcut = shortcutName(key.identifier);
        if (from == component && shortcut && action == QLatin1StringView(shortcut->name)) {
            press(key.identifier);
            return;
        }
    }
}

} // namespace pavonel
