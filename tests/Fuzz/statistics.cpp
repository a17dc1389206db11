#include "Core/Stats.h"
#include "Core/StatsExport.h"
#include "Fuzz/Target.h"
#include "support/FakePlatform.h"

namespace pavonel::fuzz {

void statistics(const QByteArray &input) {
    test::FakeDefaults defaults;
    const test::VirtualMainLoop loop;
    defaults.set(Stats::key, input);
    Stats stats(defaults, loop);
    require(stats.lastWeek().size() == 7);
    stats.setToday({1, 2, 3, 4, 5, 6});
    const auto stored = defaults.value(Stats::key);
    require(stored.has_value());
    for (const auto format : {StatsExport::Format::csv, StatsExport::Format::json}) {
        const StatsExport ofInput = StatsExport::of({StoredValue(input), false}, format);
        const StatsExport ours = StatsExport::of({*stored, false}, format);
        require(!ofInput.text.isEmpty() && ours.complaints.size() <= ofInput.complaints.size());
    }
}

} // namespace pavonel::fuzz
