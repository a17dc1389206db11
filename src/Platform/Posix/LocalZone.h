#pragma once

#include <QByteArray>
#include <QTimeZone>

#include <chrono>
#include <optional>

#include <sys/types.h>

namespace pavonel {

/// The user's time zone as the system has it, or had it some seconds ago. It is asked every second, so the
/// system's setting is looked at less often, and the zone looked up anew only when that has been touched.
class LocalZone {
public:
    /// Where the zone has no name that Qt knows, a zone of today's offset.
    QTimeZone current();

private:
    /// What the zone is made of: the environment's `TZ` and the system's link.
    struct Origin {
        QByteArray variable;
        dev_t device = 0;
        ino_t file = 0;
        time_t changed = 0;
        off_t size = 0;

        static Origin now();
        bool operator==(const Origin &) const = default;
    };

    std::chrono::steady_clock::time_point nextLook_;
    std::optional<Origin> origin_; ///< Absent while the zone is a mere offset.
    QTimeZone zone_;
};

} // namespace pavonel
