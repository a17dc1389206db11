#include "Core/Settings.h"
#include "Platform/Platform.h"
#include "UI/SettingsWindow/AddField.h"
#include "UI/SettingsWindow/BackgroundParts.h"
#include "UI/SettingsWindow/LimitationNote.h"
#include "UI/SettingsWindow/PageContext.h"
#include "UI/SettingsWindow/Pages/Pages.h"
#include "UI/SettingsWindow/SoundRow.h"
#include "UI/SettingsWindow/TextList.h"

namespace pavonel {

using namespace Qt::StringLiterals;

Pieces appearancePage(PageContext &context) {
    Settings &settings = context.settings;
    Platform &platform = context.platform;
    const auto sounds = [&settings] { return settings.soundEnabled.get(); };
    const auto addMessage = [&settings](const QString &text) {
        settings.messages = settings.messages.get() + QStringList(text);
    };
    return {
        Card{u"Break screen"_s,
             {},
             {
                 StyleChoice{settings},
                 CustomImageRow{settings},
                 limitationNote(*platform.windowLayers),
             }},
        Card{u"Sounds"_s,
             {},
             {
                 SwitchRow{u"Play sounds"_s, settings.soundEnabled},
                 OnlyWhile{sounds, SoundRow{u"Break starts"_s, settings.startSound, *platform.sounds}},
                 OnlyWhile{sounds, SoundRow{u"Break ends"_s, settings.endSound, *platform.sounds}},
                 limitationNote(*platform.sounds),
             }},
        Card{u"Break messages"_s,
             u"One is picked at random for each break"_s,
             {
                 TextList{.texts = settings.messages, .entries = TextList::Entries::editable},
                 AddField{u"Add a message"_s, u"Add the message"_s, addMessage},
             }},
    };
}

} // namespace pavonel
