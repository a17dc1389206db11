#include "Platform/Linux/Gnome/GnomeHotKeys.h"

#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "Platform/Linux/Gnome/GnomeKeyBindings.h"
#include "Platform/Linux/Gnome/accelerators.h"
#include "Platform/Linux/Keyboard/UsKey.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <list>
#include <utility>

namespace pavonel {

namespace {

/// The desktop lets go of a custom key binding a moment after its settings have changed.
constexpr std::chrono::seconds letGoDelay{2};

} // namespace

class GnomeHotKeys::Grabs final : public QObject {
public:
    struct HotKey {
        QString accelerator;
        std::uint32_t identifier = 0;
        std::uint32_t action = 0; ///< What the Shell calls it; 0 while it is not ours.
        bool isRefused = false;
        std::uint32_t serial = 0; ///< Numbers of registrations are never used again.
    };

    Grabs(const QDBusConnection &session, std::shared_ptr<GnomeExtension> extension, MainLoop &loop);

    std::uint32_t add(const QString &accelerator, std::uint32_t identifier);
    void remove(std::uint32_t serial);
    void setHandler(PressHandler handler) { handler_ = std::move(handler); }
    QString limitation() const;

private:
    HotKey *find(std::uint32_t serial);
    void grab(const HotKey &hotKey);
    void followPresence();
    void grabRefused();
    void notePress(std::uint32_t action);
    std::vector<CustomKeyBinding> wantedBindings() const;
    QStringList refused() const;

    std::shared_ptr<GnomeExtension> extension_;
    std::list<HotKey> hotKeys_;
    std::uint32_t lastSerial_ = 0;
    PressHandler handler_;
    GnomeKeyBindings bindings_;
    QTimer bindingsGone_;
};

class GnomeHotKeys::Registration final : public HotKeyRegistration {
public:
    Registration(std::shared_ptr<Grabs> grabs, std::uint32_t serial)
        : grabs_(std::move(grabs)), serial_(serial) {}
    ~Registration() override { grabs_->remove(serial_); }

private:
    std::shared_ptr<Grabs> grabs_;
    std::uint32_t serial_;
};

GnomeHotKeys::Grabs::Grabs(const QDBusConnection &session, std::shared_ptr<GnomeExtension> extension,
                           MainLoop &loop)
    : extension_(std::move(extension)), bindings_(session, loop, [this] { return wantedBindings(); }) {
    bindingsGone_.setSingleShot(true);
    bindingsGone_.setInterval(letGoDelay);
    connect(&bindings_, &GnomeKeyBindings::gone, &bindingsGone_, qOverload<>(&QTimer::start));
    connect(&bindingsGone_, &QTimer::timeout, this, [this] { grabRefused(); });
    connect(extension_.get(), &GnomeExtension::presenceChanged, this, [this] { followPresence(); });
    connect(extension_.get(), &GnomeExtension::pressed, this,
            [this](std::uint32_t action) { notePress(action); });
}

GnomeHotKeys::Grabs::HotKey *GnomeHotKeys::Grabs::find(std::uint32_t serial) {
    const auto found = std::ranges::find(hotKeys_, serial, &HotKey::serial);
    return found == hotKeys_.end() ? nullptr : &*found;
}

std::uint32_t GnomeHotKeys::Grabs::add(const QString &accelerator, std::uint32_t identifier) {
    const HotKey &added = hotKeys_.emplace_back(HotKey{accelerator, identifier, 0, false, ++lastSerial_});
    if (extension_->isPresent())
        grab(added);
    if (shortcutName(identifier))
        bindings_.review();
    return added.serial;
}

void GnomeHotKeys::Grabs::remove(std::uint32_t serial) {
    const HotKey *hotKey = find(serial);
    if (hotKey && hotKey->action != 0 && extension_->isPresent())
        extension_->ungrab(hotKey->action);
    if (hotKey && shortcutName(hotKey->identifier))
        bindings_.review();
    hotKeys_.remove_if([&](const HotKey &each) { return each.serial == serial; });
}

/// It may be unwanted again by the time of the answer.
void GnomeHotKeys::Grabs::grab(const HotKey &hotKey) {
    extension_->grab(hotKey.accelerator, [this, serial = hotKey.serial](std::uint32_t action) {
        if (HotKey *wanted = find(serial)) {
            wanted->action = action;
            wanted->isRefused = action == 0;
        } else if (action != 0) {
            extension_->ungrab(action);
        }
    });
}

void GnomeHotKeys::Grabs::followPresence() {
    for (HotKey &each : hotKeys_) {
        each.action = 0;
        each.isRefused = false;
        if (extension_->isPresent())
            grab(each);
    }
    bindings_.review();
}

/// While they were ours in the desktop's own way, the extension could not have them.
void GnomeHotKeys::Grabs::grabRefused() {
    for (const HotKey &each : hotKeys_) {
        if (each.isRefused && extension_->isPresent())
            grab(each);
    }
}

std::vector<CustomKeyBinding> GnomeHotKeys::Grabs::wantedBindings() const {
    std::vector<CustomKeyBinding> wanted;
    for (const HotKey &each : hotKeys_) {
        const ShortcutName *shortcut = shortcutName(each.identifier);
        if (shortcut && !extension_->isPresent())
            wanted.push_back({QString::fromLatin1(shortcut->name), QString::fromLatin1(shortcut->title),
                              each.accelerator});
    }
    return wanted;
}

QStringList GnomeHotKeys::Grabs::refused() const {
    if (!extension_->isPresent())
        return bindings_.taken();
    QStringList all;
    for (const HotKey &each : hotKeys_) {
        if (each.isRefused)
            all.append(each.accelerator);
    }
    return all;
}

QString GnomeHotKeys::Grabs::limitation() const {
    if (!extension_->isPresent() && !bindings_.areHeeded())
        return QStringLiteral("This desktop does not offer keyboard shortcuts.") + extension_->advice();
    QStringList all = refused();
    if (all.isEmpty())
        return {};
    std::ranges::transform(all, all.begin(), spokenAccelerator);
    return QStringLiteral("Something else on this desktop has taken %1.").arg(all.join(QStringLiteral(", ")));
}

void GnomeHotKeys::Grabs::notePress(std::uint32_t action) {
    const auto pressed = std::ranges::find(hotKeys_, action, &HotKey::action);
    if (pressed == hotKeys_.end())
        return;
    const PressHandler handler = handler_; // it may end this registration
    if (handler)
        handler(pressed->identifier);
}

GnomeHotKeys::GnomeHotKeys(const QDBusConnection &session, const std::shared_ptr<GnomeExtension> &extension,
                           MainLoop &loop)
    : grabs_(std::make_shared<Grabs>(session, extension, loop)) {}

QString GnomeHotKeys::limitation() const {
    return grabs_->limitation();
}

void GnomeHotKeys::setPressHandler(PressHandler handler) {
    grabs_->setHandler(std::move(handler));
}

std::unique_ptr<HotKeyRegistration> GnomeHotKeys::registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                              std::uint32_t identifier) {
    const QString accelerator = gnomeAccelerator(keyCode, modifiers);
    if (accelerator.isEmpty())
        return nullptr;
    return std::make_unique<Registration>(grabs_, grabs_->add(accelerator, identifier));
}

} // namespace pavonel
