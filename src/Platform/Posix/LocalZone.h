#pragma once

#include <QByteArray>
#include <QTimeZone>

#include <sys/types.h>

namespace pavonel {

/// The user's time zone as the system has it at this moment. It is asked every second, so it is looked up
/// anew only when the system's setting has been touched.
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

    Origin origin_;
    QTimeZone zone_;
};

} // namespace pavonel
