#pragma once

#include "Platform/Service.h"

#include <vector>

class QImage;

namespace pavonel {

struct InstalledApplication {
    QString bundleIdentifier; ///< As `Applications` reports it while the application runs.
    QString name;             ///< In the user's language.

    bool operator==(const InstalledApplication &) const = default;
};

/// The applications that a user can start here and would know by name.
class InstalledApplications : public Service {
public:
    /// In the order of their names, each identifier once. Reads the disk anew. On a failure the list is
    /// empty.
    virtual std::vector<InstalledApplication> all() = 0;

    /// The icon of an application of the last `all`, at most `side` pixels wide and high. Null when there is
    /// none or it cannot be read.
    virtual QImage icon(const QString &bundleIdentifier, int side) = 0;
};

} // namespace pavonel
