#include "Platform/Linux/Gnome/GnomeExtensionSwitch.h"

#include "Platform/Linux/Gnome/GnomeExtension.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QStandardPaths>

#include <utility>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

const auto service = u"org.gnome.Shell"_s;
const auto interface = u"org.gnome.Shell.Extensions"_s;
const auto path = u"/org/gnome/Shell"_s;
const auto ours = u"pavonel@pavonel.org"_s;

bool isInstalled() {
    const QString file = u"gnome-shell/extensions/"_s + ours + u"/metadata.json"_s;
    return !QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty();
}

} // namespace

GnomeExtensionSwitch::GnomeExtensionSwitch(const QDBusConnection &session,
                                           std::shared_ptr<GnomeExtension> extension)
    : session_(session), extension_(std::move(extension)) {
    session_.connect(service, path, interface, u"ExtensionStateChanged"_s, this, SLOT(noticeChange(QString)));
}

bool GnomeExtensionSwitch::isPossible() {
    if (!extension_->isShellThere())
        return false;
    look();
    return true;
}

QString GnomeExtensionSwitch::limitation() const {
    switch (state_) {
    case State::unknown:
        return isInstalled() ? u"GNOME finds it at your next login; then it can be switched on here."_s
                             : u"It is not installed: copy Pavonel's folder gnome/pavonel@pavonel.org to"
                               " ~/.local/share/gnome-shell/extensions and log in again."_s;
    case State::refused:
        return u"GNOME refuses it; it may be made for another version of GNOME."_s;
    case State::unasked:
    case State::off:
    case State::on:
        break;
    }
    return anyAllowed_ ? QString() : u"In GNOME's program Extensions all extensions are switched off."_s;
}

void GnomeExtensionSwitch::setOn(bool on) {
    take(on ? State::on : State::off);
    ++switching_;
    ask(interface, on ? u"EnableExtension"_s : u"DisableExtension"_s, {ours}, [this](const QDBusMessage &) {
        --switching_;
        look();
    });
}

void GnomeExtensionSwitch::noticeChange(const QString &uuid) {
    if (uuid == ours)
        look();
}

void GnomeExtensionSwitch::take(State state) {
    if (std::exchange(state_, state) != state && changed_)
        changed_();
}

/// The numbers of GNOME 43 to 48.
GnomeExtensionSwitch::State GnomeExtensionSwitch::stateIn(const QDBusMessage &reply) {
    constexpr int on = 1;
    constexpr int error = 3;
    constexpr int outOfDate = 4;
    constexpr int turningOn = 8;
    if (reply.signature() != u"a{sv}")
        return State::unknown;
    const auto told = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    if (!told.contains(u"state"_s))
        return State::unknown;
    switch (told[u"state"_s].toInt()) {
    case on:
    case turningOn:
        return State::on;
    case error:
    case outOfDate:
        return State::refused;
    default:
        return State::off;
    }
}

void GnomeExtensionSwitch::look() {
    ask(u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {interface, u"UserExtensionsEnabled"_s},
        [this](const QDBusMessage &reply) {
            const auto told = reply.arguments().value(0).value<QDBusVariant>().variant();
            const bool allowed = told.typeId() != QMetaType::Bool || told.toBool();
            if (std::exchange(anyAllowed_, allowed) != allowed && changed_)
                changed_();
        });
    ask(interface, u"GetExtensionInfo"_s, {ours}, [this](const QDBusMessage &reply) {
        if (switching_ == 0) // else this was asked before
            take(stateIn(reply));
    });
}

/// Of the Shell itself: the service of the interface's name would be started for it and only passes it on.
void GnomeExtensionSwitch::ask(const QString &of, const QString &method, const QVariantList &arguments,
                               std::function<void(const QDBusMessage &)> done) {
    auto question = QDBusMessage::createMethodCall(service, path, of, method);
    question.setArguments(arguments);
    question.setAutoStartService(false);
    auto *answer = new QDBusPendingCallWatcher(session_.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, done = std::move(done)] {
        answer->deleteLater();
        done(answer->reply());
    });
}

} // namespace pavonel
