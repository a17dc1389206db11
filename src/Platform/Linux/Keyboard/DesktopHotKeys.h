#pragma once

#include "Platform/HotKeyService.h"
#include "Platform/Linux/Keyboard/UsKey.h"

#include <list>
#include <memory>

namespace pavonel {

/// Shortcuts that a desktop gives when it gets round to it: each is asked for, and ours once it says so. One
/// desktop's way is a class of its own.
class DesktopHotKeys {
public:
    struct Key {
        int number; ///< Every key has another, also one that was given back and asked for again.
        UsKey combination;
        std::uint32_t identifier;
        bool isHeld = false;
    };

    DesktopHotKeys() = default;
    DesktopHotKeys(const DesktopHotKeys &) = delete;
    DesktopHotKeys &operator=(const DesktopHotKeys &) = delete;
    virtual ~DesktopHotKeys() = default;

    /// Why there are none; empty while there are.
    virtual QString limitation() const = 0;

    /// Null for one that is there already. It stays where it is until it is removed.
    const Key *add(const UsKey &combination, std::uint32_t identifier);
    void remove(const Key *key);
    /// When the program quits, which destroys nobody.
    virtual void giveBackAll();
    void setHandler(HotKeyService::PressHandler handler) { handler_ = std::move(handler); }

protected:
    virtual void askFor(const Key &key) = 0;
    virtual void giveBack(const Key &key) = 0;

    const std::list<Key> &keys() const { return keys_; }
    void askForAll();

    /// What the desktop said. Nothing happens for a key that is gone by now.
    void setHeld(int number, bool isHeld);
    void loseAll();
    void press(std::uint32_t identifier);

private:
    std::list<Key> keys_;
    int added_ = 0;
    HotKeyService::PressHandler handler_;
};

std::unique_ptr<HotKeyService> makeHotKeyService(std::shared_ptr<DesktopHotKeys> desktop);

} // namespace pavonel
