#include "Core/HotKeys.h"

#include <QStringList>

#include <utility>

namespace pavonel {

HotKeyManager::HotKeyManager(HotKeyService &service, MainLoop &loop) : service_(service), loop_(loop) {}

HotKeyManager::~HotKeyManager() {
    if (handlerInstalled_)
        service_.setPressHandler({});
}

void HotKeyManager::registerBinding(Binding binding) {
    if (!std::exchange(handlerInstalled_, true)) {
        service_.setPressHandler([this, &loop = loop_, watch = lifetime_.watch()](std::uint32_t id) {
            loop.post(watch.guard([this, id] { dispatch(id); }));
        });
    }
    const std::uint32_t id = binding.id;
    const std::uint32_t keyCode = binding.keyCode;
    const std::uint32_t modifiers = binding.modifiers;
    bindings_.insert_or_assign(id, std::move(binding));
    if (auto registration = service_.registerKey(keyCode, modifiers, id))
        refs_.insert_or_assign(id, std::move(registration));
}

bool HotKeyManager::holds(std::uint32_t id) const {
    const auto found = refs_.find(id);
    return found != refs_.end() && found->second->isHeld();
}

void HotKeyManager::unregisterEscape() {
    if (refs_.erase(escapeID) > 0)
        bindings_.erase(escapeID);
}

void HotKeyManager::dispatch(std::uint32_t id) {
    const auto binding = bindings_.find(id);
    if (binding == bindings_.end())
        return;
    const auto action = binding->second.action; // it may unregister its own binding
    if (action)
        action();
}

QString shortcutNote(const HotKeyManager &hotKeys, bool wanted) {
    if (QString limitation = hotKeys.limitation(); !limitation.isEmpty())
        return limitation;
    bool wereWanted = false; // when the program started, which is when the switch takes effect
    QStringList refused;
    for (const auto &[id, binding] : hotKeys.bindings()) {
        if (id == HotKeyManager::escapeID) // is the break screen's own
            continue;
        wereWanted = true;
        if (!hotKeys.holds(id))
            refused.append(binding.label);
    }
    if (wanted != wereWanted)
        return wanted ? QStringLiteral("They work from the next start of Pavonel on.")
                      : QStringLiteral("They work until Pavonel is next started.");
    if (refused.isEmpty())
        return {};
    return refused.join(QStringLiteral(", ")) +
           QStringLiteral(" cannot be had here; another program may own ") +
           (refused.size() == 1 ? QStringLiteral("it.") : QStringLiteral("them."));
}

} // namespace pavonel
