#pragma once

#include "Platform/DesktopExtension.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <memory>
#include <utility>

namespace pavonel {

class GnomeExtension;

/// Switches our extension of GNOME Shell, as GNOME's program Extensions does.
class GnomeExtensionSwitch final : public QObject, public DesktopExtension {
    Q_OBJECT

public:
    GnomeExtensionSwitch(const QDBusConnection &session, std::shared_ptr<GnomeExtension> extension);

    QString limitation() const override;
    bool isPossible() override;
    bool isOn() const override { return state_ == State::on; }
    void setOn(bool on) override;
    void onChange(std::function<void()> changed) override { changed_ = std::move(changed); }

private Q_SLOTS:
    void noticeChange(const QString &uuid);

private:
    /// What the Shell says of it.
    enum class State { unasked, unknown, off, on, refused };

    static State stateIn(const QDBusMessage &reply);
    void look();
    void take(State state);
    void ask(const QString &of, const QString &method, const QVariantList &arguments,
             std::function<void(const QDBusMessage &)> done);

    QDBusConnection session_;
    std::shared_ptr<GnomeExtension> extension_;
    State state_ = State::unasked;
    bool anyAllowed_ = true;
    int switching_ = 0; ///< Orders that the Shell has not answered.
    std::function<void()> changed_;
};

} // namespace pavonel
