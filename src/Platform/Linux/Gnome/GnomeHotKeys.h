#pragma once

#include "Platform/HotKeyService.h"
#include "Platform/MainLoop.h"

#include <QDBusConnection>

#include <memory>

namespace pavonel {

class GnomeExtension;

/// Shortcuts that our extension of GNOME Shell takes for us, whenever it is there. While it is not, those
/// that have a name are custom key bindings of the desktop: these tell nobody of a press, but do by
/// themselves what the shortcut is for.
class GnomeHotKeys final : public HotKeyService {
public:
    GnomeHotKeys(const QDBusConnection &session, const std::shared_ptr<GnomeExtension> &extension,
                 MainLoop &loop);

    /// Names those that somebody else has: the Shell says so only later.
    QString limitation() const override;

    void setPressHandler(PressHandler handler) override;

    /// Null for a key other than letters and Escape.
    std::unique_ptr<HotKeyRegistration> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    std::uint32_t identifier) override;

private:
    class Grabs;
    class Registration;

    std::shared_ptr<Grabs> grabs_; ///< A registration may outlive the service.
};

} // namespace pavonel
