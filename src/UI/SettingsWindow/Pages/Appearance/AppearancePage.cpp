#include "Core/Settings.h"
#include "Core/SystemBits.h"
#include "Platform/Sounds.h"
#include "Platform/WindowLayers.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Appearance/BreakScreenRows.h"
#include "UI/SettingsWindow/Rows/Rows.h"

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

const QString none = QStringLiteral("None");

QWidget *listenButton(const QString &label, const std::function<QString()> &sound, Sounds &sounds) {
    auto *button = Button::ofSymbol(u"speaker.wave.2"_s, u"Listen to %1"_s.arg(label));
    QObject::connect(button, &Button::clicked, button,
                     [sound, &sounds] { SoundPlayer::play(sounds, sound()); });
    follow(*button, [button, sound] { button->setEnabled(sound() != none); });
    return button;
}

/// A picker of one of the system's sounds or none. A choice is heard at once, and again with the button
/// beside it.
QWidget *soundRow(const QString &label, const ValueBinding<QString> &sound, Sounds &sounds) {
    const auto chooseAndPlay = [set = sound.set, &sounds](const QString &choice) {
        set(choice);
        SoundPlayer::play(sounds, choice);
    };
    return pickerRow(label, {sound.get, chooseAndPlay}, QStringList(none) + sounds.names(),
                     listenButton(label, sound.get, sounds));
}

} // namespace

QWidgetList appearancePage(PageContext &context) {
    Settings &settings = context.settings;
    Sounds &player = context.sounds;
    const auto sounds = [&settings] { return settings.soundEnabled.get(); };
    const auto addMessage = [&settings](const QString &text) {
        settings.messages = settings.messages.get() + QStringList(text);
    };
    return {
        card(u"Break screen"_s, {},
             {
                 styleChoice(settings),
                 customImageRow(settings),
                 limitationNote(context.display.layers),
             }),
        card(u"Sounds"_s, {},
             {
                 switchRow(u"Play sounds"_s, settings.soundEnabled),
                 enabledWhile(sounds, soundRow(u"Break starts"_s, settings.startSound, player)),
                 enabledWhile(sounds, soundRow(u"Break ends"_s, settings.endSound, player)),
                 limitationNote(player),
             }),
        card(u"Break messages"_s, u"One is picked at random for each break"_s,
             {
                 textList(settings.messages, {.entries = TextListOptions::Entries::editable}),
                 addField(u"Add a message"_s, u"Add the message"_s, addMessage),
             }),
    };
}

} // namespace pavonel
