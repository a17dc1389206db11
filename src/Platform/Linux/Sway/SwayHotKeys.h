#pragma once

#include "Platform/Linux/Keyboard/DesktopHotKeys.h"
#include "Platform/Linux/Sway/SwayIpc.h"

#include <memory>

namespace pavonel {

/// Key bindings that sway gets from us at run time, by the position of their key. What the user's
/// configuration binds stays his.
class SwayHotKeys final : public DesktopHotKeys {
public:
    /// Null where there is no sway.
    static std::shared_ptr<SwayHotKeys> make();

    QString limitation() const override;

    /// Waits a moment until sway has taken them back.
    void giveBackAll() override;

private:
    explicit SwayHotKeys(std::unique_ptr<SwayIpc> ipc);

    void askFor(const Key &key) override;
    void giveBack(const Key &key) override;
    void readConfiguration();
    void notice(SwayIpc::Event event, const QJsonDocument &told);

    std::unique_ptr<SwayIpc> ipc_;
    bool isConfigurationKnown_ = false;
    QByteArray configuration_;
};

} // namespace pavonel
