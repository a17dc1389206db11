#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>

namespace pavonel {

class BusSingleInstance;

/// The desktop's standard interface of a program that is reached over the bus. Anybody can send anything
/// here, so the calls are taken as they come, and read no further than they have to be.
class ApplicationInterface final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
    Q_CLASSINFO("D-Bus Introspection", "<interface name=\"org.freedesktop.Application\">\n"
                                       "<method name=\"Activate\">\n"
                                       "<arg name=\"platform_data\" type=\"a{sv}\" direction=\"in\"/>\n"
                                       "</method>\n"
                                       "<method name=\"Open\">\n"
                                       "<arg name=\"uris\" type=\"as\" direction=\"in\"/>\n"
                                       "<arg name=\"platform_data\" type=\"a{sv}\" direction=\"in\"/>\n"
                                       "</method>\n"
                                       "<method name=\"ActivateAction\">\n"
                                       "<arg name=\"action_name\" type=\"s\" direction=\"in\"/>\n"
                                       "<arg name=\"parameter\" type=\"av\" direction=\"in\"/>\n"
                                       "<arg name=\"platform_data\" type=\"a{sv}\" direction=\"in\"/>\n"
                                       "</method>\n"
                                       "</interface>\n")

public:
    ApplicationInterface(QObject *exported, const QDBusConnection &bus, BusSingleInstance &instance);

    static const QString name;

public Q_SLOTS:
    void Activate(const QDBusMessage &call);
    void Open(const QDBusMessage &call);
    void ActivateAction(const QDBusMessage &call);

private:
    void reopen(const QVariant &platformData);

    QDBusConnection bus_;
    BusSingleInstance &instance_;
};

} // namespace pavonel
