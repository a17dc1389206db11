#include "UI/SettingsWindow/PageContext.h"
#include "UI/SettingsWindow/Pages/Pages.h"
#include "UI/SettingsWindow/Rows.h"
#include "UI/SettingsWindow/StatsParts.h"

namespace pavonel {

using namespace Qt::StringLiterals;

Pieces statsPage(PageContext &context) {
    return {
        Card{u"Last 7 days"_s, {}, {WeekParts{context.stats}}},
        ResetRow{context.stats},
    };
}

} // namespace pavonel
