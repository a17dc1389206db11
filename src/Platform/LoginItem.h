#pragma once

#include "Platform/Service.h"

#include <optional>

namespace pavonel {

/// Whether this program starts when the user logs in.
class LoginItem : public Service {
public:
    virtual bool isEnabled() = 0;

    /// Absent on success, otherwise one readable sentence.
    virtual std::optional<QString> setEnabled(bool enabled) = 0;
};

} // namespace pavonel
