#include "Platform/Linux/X11/X11HotKeys.h"

#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11Keyboard.h"

#include <QTimer>

#include <algorithm>
#include <list>
#include <optional>
#include <utility>
#include <vector>

namespace pavonel {

class X11HotKeys::Grabs {
public:
    struct HotKey {
        std::uint32_t macKeyCode;
        std::uint32_t macModifiers;
        std::uint32_t identifier;
        std::optional<X11Keyboard::Combination> grabbed; ///< Absent while it cannot be had.
    };

    explicit Grabs(std::shared_ptr<X11Connection> connection);

    const HotKey *add(std::uint32_t macKeyCode, std::uint32_t macModifiers, std::uint32_t identifier);
    void remove(const HotKey *hotKey);
    void setHandler(PressHandler handler) { handler_ = std::move(handler); }

private:
    bool isHeld(const X11Keyboard::Combination &combination) const;
    std::optional<X11Keyboard::Combination> grab(std::uint32_t macKeyCode, std::uint32_t macModifiers);
    void ungrab(const std::optional<X11Keyboard::Combination> &combination);
    void followKeyboard();
    void notice(const xcb_generic_event_t &event);
    void noticePress(const xcb_key_press_event_t &press);

    std::shared_ptr<X11Connection> connection_;
    X11Keyboard keyboard_;
    std::list<HotKey> hotKeys_; // a list, for registrations point to their own
    PressHandler handler_;
    xcb_timestamp_t releaseTime_ = 0;
    xcb_keycode_t releasedKey_ = 0;
    QTimer keyboardChange_;
    X11Connection::SubscriptionHandle listening_;
};

class X11HotKeys::Registration final : public HotKeyRegistration {
public:
    Registration(std::shared_ptr<Grabs> grabs, const Grabs::HotKey *hotKey)
        : grabs_(std::move(grabs)), hotKey_(hotKey) {}
    ~Registration() override { grabs_->remove(hotKey_); }

private:
    std::shared_ptr<Grabs> grabs_;
    const Grabs::HotKey *hotKey_;
};

X11HotKeys::Grabs::Grabs(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)), keyboard_(X11Keyboard::read(*connection_)) {
    keyboardChange_.setSingleShot(true); // a change of layout comes as a row of notices
    QObject::connect(&keyboardChange_, &QTimer::timeout, &keyboardChange_, [this] { followKeyboard(); });
    listening_ = connection_->listen([this](const xcb_generic_event_t &event) { notice(event); });
}

const X11HotKeys::Grabs::HotKey *X11HotKeys::Grabs::add(std::uint32_t macKeyCode, std::uint32_t macModifiers,
                                                        std::uint32_t identifier) {
    const auto combination = grab(macKeyCode, macModifiers);
    if (!combination)
        return nullptr;
    return &hotKeys_.emplace_back(HotKey{macKeyCode, macModifiers, identifier, combination});
}

void X11HotKeys::Grabs::remove(const HotKey *hotKey) {
    ungrab(hotKey->grabbed);
    hotKeys_.remove_if([&](const HotKey &each) { return &each == hotKey; });
}

bool X11HotKeys::Grabs::isHeld(const X11Keyboard::Combination &combination) const {
    return std::any_of(hotKeys_.begin(), hotKeys_.end(),
                       [&](const HotKey &each) { return each.grabbed == combination; });
}

/// All or nothing: a shortcut that works only while Num Lock is off is worse than none.
std::optional<X11Keyboard::Combination> X11HotKeys::Grabs::grab(std::uint32_t macKeyCode,
                                                                std::uint32_t macModifiers) {
    const auto combination = keyboard_.resolve(macKeyCode, macModifiers);
    if (!combination || isHeld(*combination))
        return std::nullopt;
    std::vector<xcb_void_cookie_t> cookies;
    for (const std::uint16_t locks : keyboard_.lockStates()) {
        cookies.push_back(xcb_grab_key_checked(connection_->xcb(), 0, connection_->root(),
                                               static_cast<std::uint16_t>(combination->modifiers | locks),
                                               combination->key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    bool granted = true;
    for (const xcb_void_cookie_t cookie : cookies) {
        const XReply<xcb_generic_error_t> error(xcb_request_check(connection_->xcb(), cookie));
        granted = granted && !error;
    }
    if (granted && connection_->isAlive())
        return combination;
    ungrab(combination);
    return std::nullopt;
}

/// Ours only; those of other programs stay.
void X11HotKeys::Grabs::ungrab(const std::optional<X11Keyboard::Combination> &combination) {
    if (!combination)
        return;
    for (const std::uint16_t locks : keyboard_.lockStates()) {
        xcb_ungrab_key(connection_->xcb(), combination->key, connection_->root(),
                       static_cast<std::uint16_t>(combination->modifiers | locks));
    }
    connection_->flush(); // others may have them from now on
}

void X11HotKeys::Grabs::followKeyboard() {
    X11Keyboard now = X11Keyboard::read(*connection_);
    if (now == keyboard_)
        return;
    for (HotKey &each : hotKeys_)
        ungrab(std::exchange(each.grabbed, std::nullopt));
    keyboard_ = std::move(now);
    for (HotKey &each : hotKeys_)
        each.grabbed = grab(each.macKeyCode, each.macModifiers);
}

void X11HotKeys::Grabs::notice(const xcb_generic_event_t &event) {
    switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS:
        noticePress(reinterpret_cast<const xcb_key_press_event_t &>(event));
        break;
    case XCB_KEY_RELEASE: {
        const auto &release = reinterpret_cast<const xcb_key_release_event_t &>(event);
        releaseTime_ = release.time;
        releasedKey_ = release.detail;
        break;
    }
    case XCB_MAPPING_NOTIFY:
        keyboardChange_.start(0);
        break;
    default:
        break;
    }
}

void X11HotKeys::Grabs::noticePress(const xcb_key_press_event_t &press) {
    // A key that is held down goes up and down again at the same moment.
    if (press.detail == releasedKey_ && press.time == releaseTime_)
        return;
    const X11Keyboard::Combination pressed{press.detail, keyboard_.withoutLocks(press.state)};
    for (const HotKey &each : hotKeys_) {
        if (each.grabbed != pressed)
            continue;
        const PressHandler handler = handler_; // it may end this registration
        if (handler)
            handler(each.identifier);
        return;
    }
}

std::unique_ptr<HotKeyService> X11HotKeys::make(std::shared_ptr<X11Connection> connection) {
    if (!X11Keyboard::isReadable(*connection))
        return nullptr;
    return std::unique_ptr<HotKeyService>(new X11HotKeys(std::make_shared<Grabs>(std::move(connection))));
}

X11HotKeys::X11HotKeys(std::shared_ptr<Grabs> grabs) : grabs_(std::move(grabs)) {}

void X11HotKeys::setPressHandler(PressHandler handler) {
    grabs_->setHandler(std::move(handler));
}

std::unique_ptr<HotKeyRegistration> X11HotKeys::registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                            std::uint32_t identifier) {
    const Grabs::HotKey *hotKey = grabs_->add(keyCode, modifiers, identifier);
    return hotKey ? std::make_unique<Registration>(grabs_, hotKey) : nullptr;
}

} // namespace pavonel
