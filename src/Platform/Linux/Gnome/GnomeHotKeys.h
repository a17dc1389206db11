#pragma once

#include "Platform/HotKeyService.h"

#include <memory>

namespace pavonel {

class GnomeExtension;

/// Shortcuts that our extension of GNOME Shell takes for us, whenever it is there.
class GnomeHotKeys final : public HotKeyService {
public:
    explicit GnomeHotKeys(const std::shared_ptr<GnomeExtension> &extension);

    /// Names those that somebody else has: the Shell says so only later.
    QString limitation() const override;

    void setPressHandler(PressHandler handler) override;

    /// Null for a key other than letters and Escape. It is ours as soon as there is an extension to take it.
    std::unique_ptr<HotKeyRegistration> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    std::uint32_t identifier) override;

private:
    class Grabs;
    class Registration;

    std::shared_ptr<Grabs> grabs_; ///< A registration may outlive the service.
};

} // namespace pavonel
