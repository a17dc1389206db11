#include "Platform/Linux/Bus/ApplicationInterface.h"

#include "Platform/GivenEnvironment.h"
#include "Platform/Linux/Bus/BusSingleInstance.h"
#include "Platform/Linux/Bus/refuse.h"

#include <QDBusArgument>
#include <QDBusVariant>

#include <utility>

namespace pavonel {

namespace {

QString textIn(const QVariant &platformData, QStringView wanted) {
    const auto map = platformData.value<QDBusArgument>();
    QDBusVariant text;
    map.beginMap();
    while (!map.atEnd()) {
        QString key;
        map.beginMapEntry();
        map >> key;
        if (key == wanted)
            map >> text;
        map.endMapEntry();
    }
    map.endMap();
    return text.variant().toString();
}

/// With it a Wayland compositor lets our window come to the front; Qt looks for it there.
void takeActivationToken(const QVariant &platformData) {
    const QByteArray token = textIn(platformData, u"activation-token").toUtf8();
    constexpr qsizetype longest = 4096; // bytes; a real one has dozens
    if (!token.isEmpty() && token.size() <= longest)
        setForUsAlone("XDG_ACTIVATION_TOKEN", token);
}

constexpr std::pair<const char *, OutsideAction> actions[] = {
    {"take-micro-break", OutsideAction::takeMicroBreak},
    {"take-long-break", OutsideAction::takeLongBreak},
    {"skip", OutsideAction::skip},
    {"toggle-pause", OutsideAction::togglePause},
};

} // namespace

const QString ApplicationInterface::name = QStringLiteral("org.freedesktop.Application");

ApplicationInterface::ApplicationInterface(QObject *exported, const QDBusConnection &bus,
                                           BusSingleInstance &instance)
    : QDBusAbstractAdaptor(exported), bus_(bus), instance_(instance) {}

void ApplicationInterface::Activate(const QDBusMessage &call) {
    if (!refuseOthersThan(QStringLiteral("a{sv}"), call, bus_))
        reopen(call.arguments().at(0));
}

/// We have no documents.
void ApplicationInterface::Open(const QDBusMessage &call) {
    if (!refuseOthersThan(QStringLiteral("asa{sv}"), call, bus_))
        reopen(call.arguments().at(1));
}

void ApplicationInterface::ActivateAction(const QDBusMessage &call) {
    if (refuseOthersThan(QStringLiteral("sava{sv}"), call, bus_))
        return;
    const QString action = call.arguments().at(0).toString();
    for (const auto &[known, meaning] : actions) {
        if (action == QLatin1String(known))
            instance_.act(meaning);
    }
}

void ApplicationInterface::reopen(const QVariant &platformData) {
    takeActivationToken(platformData);
    instance_.reopen();
}

} // namespace pavonel
