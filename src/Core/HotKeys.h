#pragma once

#include "Core/Lifetime.h"
#include "Platform/HotKeyService.h"
#include "Platform/MainLoop.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace pavonel {

/// One system-wide shortcut.
struct Binding {
    std::uint32_t id = 0;        ///< Unique among the registered ones.
    std::uint32_t keyCode = 0;   ///< See `HotKeyService`.
    std::uint32_t modifiers = 0; ///< See `HotKeyService`.
    QString label;               ///< For display, such as "⌃⌥⌘B".
    std::function<void()> action;
};

/// Registers shortcuts with the system and runs their actions on the main thread. A combination that cannot
/// be had stays without effect, silently.
class HotKeyManager {
public:
    HotKeyManager(HotKeyService &service, MainLoop &loop);
    ~HotKeyManager();

    static HotKeyManager &shared();

    /// See `Service`.
    QString limitation() const { return service_.limitation(); }

    /// Replaces the action of a binding with the same id.
    void registerBinding(Binding binding);

    /// Whether the combination of a registered binding is ours; another program may own it.
    bool holds(std::uint32_t id) const;
    void unregisterEscape();

    /// Every registered one, held or not.
    const std::map<std::uint32_t, Binding> &bindings() const { return bindings_; }

    /// Reserved for the Escape key of the break screen.
    static constexpr std::uint32_t escapeID = 10;

private:
    void dispatch(std::uint32_t id);

    HotKeyService &service_;
    MainLoop &loop_;
    std::map<std::uint32_t, Binding> bindings_;
    std::map<std::uint32_t, std::unique_ptr<HotKeyRegistration>>
        refs_; ///< Of the registrations that succeeded.
    bool handlerInstalled_ = false;
    Lifetime lifetime_;
};

/// What there is to say to the user of the global shortcuts, who wants them or not; empty when all is so.
QString shortcutNote(const HotKeyManager &hotKeys, bool wanted);

} // namespace pavonel
