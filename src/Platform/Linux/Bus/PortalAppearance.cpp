#include "Platform/Linux/Bus/PortalAppearance.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include <array>
#include <cmath>

namespace pavonel {

namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");

const auto common = QStringLiteral("org.freedesktop.appearance");
const auto gnome = QStringLiteral("org.gnome.desktop.interface");
const auto kde = QStringLiteral("org.kde.kdeglobals.KDE");

bool paletteIsDark() {
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

bool isDark(const DesktopSettings &settings) {
    const unsigned scheme = settings[common][QStringLiteral("color-scheme")].toUInt();
    return scheme == 1 || (scheme != 2 && paletteIsDark());
}

/// Desktops without the common key have one of their own.
bool isMotionReduced(const DesktopSettings &settings) {
    const QVariant animations = settings[gnome][QStringLiteral("enable-animations")];
    const QVariant duration = settings[kde][QStringLiteral("AnimationDurationFactor")];
    bool isNumber = false;
    const double factor = duration.toDouble(&isNumber);
    return settings[common][QStringLiteral("reduced-motion")].toUInt() == 1 ||
           (animations.isValid() && !animations.toBool()) || (isNumber && factor == 0);
}

/// Three fractions; one out of range means that the user chose no colour.
std::optional<std::uint32_t> accent(const DesktopSettings &settings) {
    const QVariant value = settings[common][QStringLiteral("accent-color")];
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != u"(ddd)")
        return {};
    std::array<double, 3> parts{};
    argument.beginStructure();
    argument >> parts[0] >> parts[1] >> parts[2];
    argument.endStructure();
    std::uint32_t colour = 0;
    for (const double part : parts) {
        if (!(part >= 0 && part <= 1))
            return {};
        colour = colour << 8 | static_cast<std::uint32_t>(std::lround(part * 255));
    }
    return colour;
}

} // namespace

PortalAppearance::PortalAppearance(const QDBusConnection &bus)
    : bus_(bus), portal_(service, bus, QDBusServiceWatcher::WatchForRegistration) {
    qDBusRegisterMetaType<DesktopSettings>();
    bus_.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                 SLOT(takeSetting(QDBusMessage)));
    connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, &PortalAppearance::ask);
    qApp->installEventFilter(this);
    update();
    ask();
}

void PortalAppearance::ask() {
    toldSince_.clear();
    auto question = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    question << QStringList{common, gnome, kde};
    const auto *call = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *answered) {
        answered->deleteLater();
        takeAnswer(*answered);
    });
}

void PortalAppearance::takeAnswer(const QDBusPendingCallWatcher &call) {
    const QDBusPendingReply<DesktopSettings> reply = call;
    settings_ = reply.isError() ? DesktopSettings() : reply.value();
    for (auto space = toldSince_.cbegin(); space != toldSince_.cend(); ++space)
        settings_[space.key()].insert(space.value());
    update();
}

void PortalAppearance::takeSetting(const QDBusMessage &signal) {
    const QVariantList arguments = signal.arguments();
    if (signal.signature() != u"ssv")
        return;
    const QString space = arguments[0].toString();
    const QString key = arguments[1].toString();
    const QVariant value = arguments[2].value<QDBusVariant>().variant();
    if (space != common && space != gnome && space != kde)
        return;
    settings_[space][key] = value;
    toldSince_[space][key] = value;
    update();
}

bool PortalAppearance::eventFilter(QObject *watched, QEvent *event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        update();
    return false;
}

void PortalAppearance::update() {
    const AppearanceWishes wishes{isDark(settings_), isMotionReduced(settings_), accent(settings_)};
    if (wishes == wishes_)
        return;
    wishes_ = wishes;
    tellChange();
}

} // namespace pavonel
