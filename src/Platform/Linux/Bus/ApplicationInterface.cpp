#include "Platform/Linux/Bus/ApplicationInterface.h"

#include "Platform/GivenEnvironment.h"
#include "Platform/Linux/Bus/BusSingleInstance.h"
#include "Platform/Linux/Bus/refuse.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusVariant>

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

constexpr int mostElements = 1000; // of a list or dictionary that comes along with a call

bool isLong(const QVariant &list) {
    if (list.metaType() == QMetaType::fromType<QStringList>())
        return list.toStringList().size() > mostElements;
    if (list.metaType() != QMetaType::fromType<QDBusArgument>())
        return false;
    const auto argument = list.value<QDBusArgument>();
    const bool isMap = argument.currentType() == QDBusArgument::MapType;
    int elements = 0;
    isMap ? argument.beginMap() : argument.beginArray();
    for (; !argument.atEnd() && elements <= mostElements; ++elements) {
        if (isMap) { // leaving an entry passes over what it holds
            argument.beginMapEntry();
            argument.endMapEntry();
        } else {
            QDBusVariant element;
            argument >> element;
        }
    }
    isMap ? argument.endMap() : argument.endArray(); // or Qt keeps it for ever
    return elements > mostElements;
}

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
    if (!refuses(call, QStringLiteral("a{sv}")))
        reopen(call.arguments().at(0));
}

/// We have no documents.
void ApplicationInterface::Open(const QDBusMessage &call) {
    if (!refuses(call, QStringLiteral("asa{sv}")))
        reopen(call.arguments().at(1));
}

void ApplicationInterface::ActivateAction(const QDBusMessage &call) {
    if (refuses(call, QStringLiteral("sava{sv}")))
        return;
    const QString action = call.arguments().at(0).toString();
    for (const auto &[known, meaning] : actions) {
        if (action == QLatin1String(known))
            instance_.act(meaning);
    }
}

bool ApplicationInterface::refuses(const QDBusMessage &call, const QString &signature) const {
    if (refuseOthersThan(signature, call, bus_))
        return true;
    if (std::ranges::none_of(call.arguments(), isLong))
        return false;
    refuse(call, bus_, QDBusError::errorString(QDBusError::LimitsExceeded),
           QStringLiteral("No desktop sends as much as this."));
    return true;
}

void ApplicationInterface::reopen(const QVariant &platformData) {
    takeActivationToken(platformData);
    instance_.reopen();
}

} // namespace pavonel
