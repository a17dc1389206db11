#pragma once

#include "Platform/Linux/Keyboard/DesktopHotKeys.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <functional>
#include <memory>

namespace pavonel {

/// The desktop portal's shortcuts. The desktop asks the user, who may choose other keys; its answer can take
/// as long as he wants.
class PortalHotKeys final : public QObject, public DesktopHotKeys {
    Q_OBJECT

public:
    explicit PortalHotKeys(const QDBusConnection &bus);
    ~PortalHotKeys() override;

    QString limitation() const override;

private:
    using Answered = std::function<void(const QVariantMap &results)>;

    Q_SLOT void takeResponse(const QDBusMessage &response);
    Q_SLOT void takePress(const QDBusMessage &signal);
    void askFor(const Key &key) override;
    void giveBack(const Key &key) override;
    void begin();
    void bind(const QString &session);
    void request(QDBusMessage call, QVariantMap options, Answered answered);
    void forget();

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    QTimer soon_; ///< All keys are asked for together: it is one question to the user.
    bool isOffered_ = false;
    QString session_;
    QString request_; ///< The path of the one that is out.
    Answered answered_;
    int requests_ = 0;
};

} // namespace pavonel
