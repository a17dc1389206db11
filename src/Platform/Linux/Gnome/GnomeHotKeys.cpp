#include "Platform/Linux/Gnome/GnomeHotKeys.h"

#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "Platform/Linux/Gnome/accelerators.h"

#include <QObject>
#include <QStringList>

#include <algorithm>
#include <list>
#include <utility>

namespace pavonel {

class GnomeHotKeys::Grabs final : public QObject {
public:
    struct HotKey {
        QString accelerator;
        std::uint32_t identifier = 0;
        std::uint32_t action = 0; ///< What the Shell calls it; 0 while it is not ours.
        bool isRefused = false;
        std::uint32_t serial = 0; ///< Numbers of registrations are never used again.
    };

    explicit Grabs(std::shared_ptr<GnomeExtension> extension);

    std::uint32_t add(const QString &accelerator, std::uint32_t identifier);
    void remove(std::uint32_t serial);
    void setHandler(PressHandler handler) { handler_ = std::move(handler); }
    const std::list<HotKey> &hotKeys() const { return hotKeys_; }
    const GnomeExtension &extension() const { return *extension_; }

private:
    HotKey *find(std::uint32_t serial);
    void grab(const HotKey &hotKey);
    void followPresence();
    void notePress(std::uint32_t action);

    std::shared_ptr<GnomeExtension> extension_;
    std::list<HotKey> hotKeys_;
    std::uint32_t lastSerial_ = 0;
    PressHandler handler_;
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

GnomeHotKeys::Grabs::Grabs(std::shared_ptr<GnomeExtension> extension) : extension_(std::move(extension)) {
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
    return added.serial;
}

void GnomeHotKeys::Grabs::remove(std::uint32_t serial) {
    const HotKey *hotKey = find(serial);
    if (hotKey && hotKey->action != 0 && extension_->isPresent())
        extension_->ungrab(hotKey->action);
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
}

void GnomeHotKeys::Grabs::notePress(std::uint32_t action) {
    const auto pressed = std::ranges::find(hotKeys_, action, &HotKey::action);
    if (pressed == hotKeys_.end())
        return;
    const PressHandler handler = handler_; // it may end this registration
    if (handler)
        handler(pressed->identifier);
}

GnomeHotKeys::GnomeHotKeys(const std::shared_ptr<GnomeExtension> &extension)
    : grabs_(std::make_shared<Grabs>(extension)) {}

QString GnomeHotKeys::limitation() const {
    if (!grabs_->extension().isPresent())
        return QStringLiteral("This desktop does not offer keyboard shortcuts.") +
               grabs_->extension().advice();
    QStringList refused;
    for (const auto &each : grabs_->hotKeys()) {
        if (each.isRefused)
            refused.append(spokenAccelerator(each.accelerator));
    }
    if (refused.isEmpty())
        return {};
    return QStringLiteral("Something else on this desktop has taken %1.")
        .arg(refused.join(QStringLiteral(", ")));
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
