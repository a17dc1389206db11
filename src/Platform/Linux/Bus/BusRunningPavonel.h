#pragma once

#include "Platform/RunningPavonel.h"

#include <QDBusConnection>
#include <QObject>

namespace pavonel {

/// The Pavonel that has our name on the session bus.
class BusRunningPavonel final : public QObject, public RunningPavonel {
    Q_OBJECT

public:
    explicit BusRunningPavonel(const QDBusConnection &bus);

    Answer status() override;
    void follow(std::function<void()> changed) override;

private Q_SLOTS:
    void noteChange();

private:
    QDBusConnection bus_;
    std::function<void()> changed_;
};

} // namespace pavonel
