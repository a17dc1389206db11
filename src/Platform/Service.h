#pragma once

#include <QString>

namespace pavonel {

/// What every platform service has in common: it can be unable to work on this desktop, and then says why.
class Service {
public:
    Service() = default;
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;
    virtual ~Service() = default;

    /// Empty while the service works; otherwise one plain sentence for the settings window.
    virtual QString limitation() const { return {}; }
};

} // namespace pavonel
