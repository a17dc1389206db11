#pragma once

#include "Platform/Service.h"

#include <memory>
#include <optional>

namespace pavonel {

/// Whether this program starts when the user logs in.
class LoginItem : public Service {
public:
    virtual bool isEnabled() = 0;

    /// Absent on success, otherwise one readable sentence.
    virtual std::optional<QString> setEnabled(bool enabled) = 0;
};

/// This system's answer by itself. Needs the application object, but no display.
std::unique_ptr<LoginItem> makeLoginItem();

} // namespace pavonel
