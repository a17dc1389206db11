#pragma once

#include "Platform/Service.h"
#include "Platform/Time.h"

namespace pavonel {

/// How long ago the user last touched keyboard or pointer. A locked session is idle since its lock.
class IdleTime : public Service {
public:
    /// 0 when it cannot be read: an unknown user counts as an active one.
    virtual Seconds idleSeconds() = 0;
};

} // namespace pavonel
