#pragma once

#include "Platform/Service.h"
#include "UI/SettingsWindow/Rows.h"

namespace pavonel {

/// Why the setting above it has no effect on this desktop; nothing where it has.
inline CardNote limitationNote(const Service &service) {
    return CardNote([&service] { return service.limitation(); });
}

} // namespace pavonel
