#include "Platform/Linux/Keyboard/DesktopHotKeys.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

class Registration final : public HotKeyRegistration {
public:
    Registration(std::shared_ptr<DesktopHotKeys> desktop, const DesktopHotKeys::Key *key)
        : desktop_(std::move(desktop)), key_(key) {}
    ~Registration() override { desktop_->remove(key_); }

    bool isHeld() const override { return key_->isHeld; }

private:
    std::shared_ptr<DesktopHotKeys> desktop_;
    const DesktopHotKeys::Key *key_;
};

class LateHotKeys final : public HotKeyService {
public:
    explicit LateHotKeys(std::shared_ptr<DesktopHotKeys> desktop) : desktop_(std::move(desktop)) {
        QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &context_,
                         [this] { desktop_->giveBackAll(); });
    }

    QString limitation() const override { return desktop_->limitation(); }
    void setPressHandler(PressHandler handler) override { desktop_->setHandler(std::move(handler)); }

    std::unique_ptr<HotKeyRegistration> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    std::uint32_t identifier) override {
        const auto combination = UsKey::of(keyCode, modifiers);
        const auto *key = combination ? desktop_->add(*combination, identifier) : nullptr;
        return key ? std::make_unique<Registration>(desktop_, key) : nullptr;
    }

private:
    std::shared_ptr<DesktopHotKeys> desktop_; ///< A registration may outlive us.
    QObject context_;
};

} // namespace

const DesktopHotKeys::Key *DesktopHotKeys::add(const UsKey &combination, std::uint32_t identifier) {
    const bool isThere =
        std::ranges::any_of(keys_, [&](const Key &each) { return each.combination == combination; });
    if (isThere)
        return nullptr;
    const Key &key = keys_.emplace_back(Key{++added_, combination, identifier});
    askFor(key);
    return &key;
}

void DesktopHotKeys::remove(const Key *key) {
    giveBack(*key);
    keys_.remove_if([key](const Key &each) { return &each == key; });
}

void DesktopHotKeys::giveBackAll() {
    for (const Key &key : keys_)
        giveBack(key);
}

void DesktopHotKeys::askForAll() {
    for (const Key &key : keys_)
        askFor(key);
}

void DesktopHotKeys::setHeld(int number, bool isHeld) {
    const auto found = std::ranges::find(keys_, number, &Key::number);
    if (found != keys_.end())
        found->isHeld = isHeld;
}

void DesktopHotKeys::loseAll() {
    for (Key &key : keys_)
        key.isHeld = false;
}

void DesktopHotKeys::press(std::uint32_t identifier) {
    const bool isOurs =
        std::ranges::any_of(keys_, [&](const Key &each) { return each.identifier == identifier; });
    const auto handler = handler_; // it may give the key back
    if (isOurs && handler)
        handler(identifier);
}

std::unique_ptr<HotKeyService> makeHotKeyService(std::shared_ptr<DesktopHotKeys> desktop) {
    return std::make_unique<LateHotKeys>(std::move(desktop));
}

} // namespace pavonel
