#include "Platform/Linux/Bus/PortalHotKeys.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <set>
#include <utility>

namespace pavonel {

namespace {

using namespace Qt::StringLiterals;

const auto service = u"org.freedesktop.portal.Desktop"_s;
const auto path = u"/org/freedesktop/portal/desktop"_s;
const auto interface = u"org.freedesktop.portal.GlobalShortcuts"_s;
const auto requestInterface = u"org.freedesktop.portal.Request"_s;

QString nameOf(const DesktopHotKeys::Key &key) {
    const ShortcutName *shortcut = shortcutName(key.identifier);
    return shortcut ? QString::fromLatin1(shortcut->name) : QString();
}

/// In the words of the shortcuts' specification.
QString triggerOf(const UsKey &key) {
    return QString::fromLatin1(
        key.modifiersBy({.control = "CTRL+", .option = "ALT+", .shift = "SHIFT+", .command = "LOGO+"}) +
        QByteArray(1, key.sign).toLower());
}

QDBusMessage call(const char *method) {
    return QDBusMessage::createMethodCall(service, path, interface, QString::fromLatin1(method));
}

/// The names in an answer's a(sa{sv}).
std::set<QString> shortcutsIn(const QVariantMap &results) {
    std::set<QString> names;
    const QVariant value = results[u"shortcuts"_s];
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return names;
    const auto list = value.value<QDBusArgument>();
    if (list.currentSignature() != u"a(sa{sv})")
        return names;
    for (list.beginArray(); !list.atEnd();) {
        QString name;
        QVariantMap properties;
        list.beginStructure();
        list >> name >> properties;
        list.endStructure();
        names.insert(name);
    }
    list.endArray();
    return names;
}

} // namespace

/// What is to be bound, as the portal takes it.
struct PortalShortcut {
    QString name;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &to, const PortalShortcut &shortcut) {
    to.beginStructure();
    to << shortcut.name << shortcut.properties;
    to.endStructure();
    return to;
}

const QDBusArgument &operator>>(const QDBusArgument &from, PortalShortcut &shortcut) {
    from.beginStructure();
    from >> shortcut.name >> shortcut.properties;
    from.endStructure();
    return from;
}

PortalHotKeys::PortalHotKeys(const QDBusConnection &bus)
    : bus_(bus), watcher_(service, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    bus_.connect(service, path, interface, u"Activated"_s, this, SLOT(takePress(QDBusMessage)));
    bus_.connect(service, QString(), requestInterface, u"Response"_s, this, SLOT(takeResponse(QDBusMessage)));
    soon_.setSingleShot(true);
    soon_.callOnTimeout(this, &PortalHotKeys::begin);
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                forget();
                if (!owner.isEmpty() && !keys().empty())
                    soon_.start(0);
            });
}

PortalHotKeys::~PortalHotKeys() = default;

QString PortalHotKeys::limitation() const {
    return isOffered_ ? QString() : u"This desktop does not offer keyboard shortcuts."_s;
}

void PortalHotKeys::forget() {
    isOffered_ = false;
    session_.clear();
    request_.clear();
    answered_ = {};
    loseAll();
}

void PortalHotKeys::askFor(const Key &) {
    soon_.start(0);
}

/// A session's keys go together.
void PortalHotKeys::giveBack(const Key &) {
    if (keys().size() > 1 || session_.isEmpty())
        return;
    bus_.send(
        QDBusMessage::createMethodCall(service, session_, u"org.freedesktop.portal.Session"_s, u"Close"_s));
    session_.clear();
}

void PortalHotKeys::begin() {
    const int turn = ++requests_;
    auto question =
        QDBusMessage::createMethodCall(service, path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << interface << u"version"_s;
    auto *watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, turn] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> version = *watcher;
        if (turn != requests_ || version.isError() || keys().empty()) // or another try began meanwhile
            return;
        isOffered_ = true;
        request(call("CreateSession"), {{u"session_handle_token"_s, u"pavonel"_s}},
                [this](const QVariantMap &results) { bind(results[u"session_handle"_s].toString()); });
    });
}

void PortalHotKeys::bind(const QString &session) {
    if (session.isEmpty() || keys().empty())
        return;
    session_ = session;
    QList<PortalShortcut> shortcuts;
    for (const Key &key : keys()) {
        if (const ShortcutName *shortcut = shortcutName(key.identifier))
            shortcuts.append({nameOf(key),
                              {{u"description"_s, QString::fromLatin1(shortcut->title)},
                               {u"preferred_trigger"_s, triggerOf(key.combination)}}});
    }
    request(call("BindShortcuts") << QVariant::fromValue(QDBusObjectPath(session))
                                  << QVariant::fromValue(shortcuts) << QString(),
            {}, [this](const QVariantMap &results) {
                const auto given = shortcutsIn(results);
                for (const Key &key : keys())
                    setHeld(key.number, given.contains(nameOf(key)));
            });
}

/// The portal answers by a signal of an object whose path it tells at once.
void PortalHotKeys::request(QDBusMessage question, QVariantMap options, Answered answered) {
    options[u"handle_token"_s] = u"pavonel%1"_s.arg(++requests_);
    question << options;
    QString sender = bus_.baseService().mid(1);
    request_ = path + u"/request/"_s + sender.replace(u'.', u'_') + u"/pavonel%1"_s.arg(requests_);
    answered_ = std::move(answered);
    bus_.send(question);
}

void PortalHotKeys::takeResponse(const QDBusMessage &response) {
    if (request_.isEmpty() || response.path() != request_ || response.signature() != u"ua{sv}")
        return;
    request_.clear();
    const auto answered = std::exchange(answered_, {});
    const bool isGranted = response.arguments()[0].toUInt() == 0;
    if (isGranted && answered)
        answered(qdbus_cast<QVariantMap>(response.arguments()[1]));
}

void PortalHotKeys::takePress(const QDBusMessage &signal) {
    if (signal.signature() != u"osta{sv}" ||
        signal.arguments()[0].value<QDBusObjectPath>().path() != session_)
        return;
    for (const Key &key : keys()) {
        if (nameOf(key) == signal.arguments()[1].toString()) {
            press(key.identifier);
            return;
        }
    }
}

} // namespace pavonel
