#include "Platform/Linux/Bus/StatusInterface.h"

#include "Platform/Linux/Bus/refuse.h"

#include <QDBusError>
#include <QMetaProperty>

#include <utility>

namespace pavonel {

namespace {

QString errorName(Refusal::Kind kind) {
    switch (kind) {
    case Refusal::Kind::badArgument:
        return QDBusError::errorString(QDBusError::InvalidArgs);
    case Refusal::Kind::notNow:
        return QStringLiteral("org.pavonel.Pavonel1.Error.Refused");
    }
    return {};
}

const QString nothing; ///< The signature of a call without arguments.
const QString seconds = QStringLiteral("u");

} // namespace

const QString StatusInterface::name = QStringLiteral("org.pavonel.Pavonel1");

StatusInterface::StatusInterface(QObject *exported, const QDBusConnection &bus, QString path)
    : QDBusAbstractAdaptor(exported), bus_(bus), path_(std::move(path)) {}

void StatusInterface::serve(RemoteControl *control) {
    control_ = control;
    told_ = toldProperties();
}

void StatusInterface::tellChange() {
    const QVariantMap now = toldProperties();
    QVariantMap changed;
    for (auto property = now.begin(); property != now.end(); ++property) {
        if (told_.value(property.key()) != property.value())
            changed.insert(property.key(), property.value());
    }
    told_ = now;
    QDBusMessage signal = QDBusMessage::createSignal(path_, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                     QStringLiteral("PropertiesChanged"));
    signal << name << changed << QStringList();
    bus_.send(signal);
}

void StatusInterface::TakeMicroBreak(const QDBusMessage &call) {
    fulfil(call, nothing, [](RemoteControl &control) { return control.takeMicroBreak(); });
}

void StatusInterface::TakeLongBreak(const QDBusMessage &call) {
    fulfil(call, nothing, [](RemoteControl &control) { return control.takeLongBreak(); });
}

void StatusInterface::Skip(const QDBusMessage &call) {
    fulfil(call, nothing, [](RemoteControl &control) { return control.skip(); });
}

void StatusInterface::Postpone(uint by, const QDBusMessage &call) {
    fulfil(call, seconds, [=](RemoteControl &control) { return control.postpone(by); });
}

void StatusInterface::Pause(uint length, const QDBusMessage &call) {
    fulfil(call, seconds, [=](RemoteControl &control) { return control.pause(length); });
}

void StatusInterface::PauseIndefinitely(const QDBusMessage &call) {
    fulfil(call, nothing, [](RemoteControl &control) { return control.pause({}); });
}

void StatusInterface::Resume(const QDBusMessage &call) {
    fulfil(call, nothing, [](RemoteControl &control) { return control.resume(); });
}

void StatusInterface::fulfil(const QDBusMessage &call, const QString &signature, const Wish &wish) {
    if (refuseOthersThan(signature, call, bus_))
        return;
    const auto refusal =
        control_ ? wish(*control_)
                 : Refusal{Refusal::Kind::notNow, QStringLiteral("Pavonel is just starting or ending.")};
    if (refusal)
        refuse(call, bus_, errorName(refusal->kind), refusal->sentence);
}

QVariantMap StatusInterface::toldProperties() const {
    QVariantMap properties;
    for (int i = staticMetaObject.propertyOffset(); i < staticMetaObject.propertyCount(); ++i) {
        const QMetaProperty property = staticMetaObject.property(i);
        if (property.isStored())
            properties.insert(QString::fromLatin1(property.name()), property.read(this));
    }
    return properties;
}

} // namespace pavonel
