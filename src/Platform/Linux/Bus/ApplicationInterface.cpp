#include "Platform/Linux/Bus/ApplicationInterface.h"

#include "Platform/GivenEnvironment.h"
#include "Platform/Linux/Bus/BusSingleInstance.h"

#include <utility>

namespace pavonel {

namespace {

/// With it a Wayland compositor lets our window come to the front; Qt looks for it there.
void takeActivationToken(const QVariantMap &platformData) {
    const QByteArray token = platformData.value(QStringLiteral("activation-token")).toString().toUtf8();
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

ApplicationInterface::ApplicationInterface(QObject *exported, BusSingleInstance &instance)
    : QDBusAbstractAdaptor(exported), instance_(instance) {}

void ApplicationInterface::Activate(const QVariantMap &platformData) {
    takeActivationToken(platformData);
    instance_.reopen();
}

/// We have no documents.
void ApplicationInterface::Open(const QStringList &, const QVariantMap &platformData) {
    Activate(platformData);
}

void ApplicationInterface::ActivateAction(const QString &action, const QVariantList &, const QVariantMap &) {
    for (const auto &[known, meaning] : actions) {
        if (action == QLatin1String(known))
            instance_.act(meaning);
    }
}

} // namespace pavonel
