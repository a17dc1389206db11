#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

namespace pavonel {

class BusSingleInstance;

/// The desktop's standard interface of a program that is reached over the bus.
class ApplicationInterface final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ApplicationInterface(QObject *exported, BusSingleInstance &instance);

    static const QString name;

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &action, const QVariantList &parameter,
                        const QVariantMap &platformData);

private:
    BusSingleInstance &instance_;
};

} // namespace pavonel
