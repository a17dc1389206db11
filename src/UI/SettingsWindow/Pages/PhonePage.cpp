#include "Core/Phone.h"
#include "Platform/Platform.h"
#include "UI/SettingsWindow/Changing.h"
#include "UI/SettingsWindow/PageContext.h"
#include "UI/SettingsWindow/Pages/Pages.h"
#include "UI/SettingsWindow/PhoneParts.h"
#include "UI/SettingsWindow/Rows.h"

namespace pavonel {

using namespace Qt::StringLiterals;

Pieces phonePage(PageContext &context) {
    Phone &phone = context.phone;
    constexpr int betweenCards = 14;
    return {
        Changing{*context.platform.mainLoop, {&phone}, [&phone] { return phoneParts(phone); }, betweenCards},
        PageNote(
            u"Only the break itself travels to the phone: its kind, its name and when it ends. Settings and "
            "statistics never leave this computer."_s,
            Text::Style::note),
    };
}

} // namespace pavonel
