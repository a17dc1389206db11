#include "Core/PlannedBreak.h"
#include "Core/PlannedSchedule.h"
#include "Fuzz/Target.h"

namespace pavonel::fuzz {

void plannedBreaks(const QByteArray &input) {
    const auto breaks = decodePlannedBreaks(input);
    if (!breaks)
        return;
    const auto written = encodePlannedBreaks(*breaks);
    require(!written || decodePlannedBreaks(*written) == breaks);
}

} // namespace pavonel::fuzz
