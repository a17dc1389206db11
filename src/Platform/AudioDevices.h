#pragma once

#include "Platform/Service.h"

namespace pavonel {

/// Whether the default audio devices are in use by any program. False when there is no device or no answer.
class AudioDevices : public Service {
public:
    virtual bool isDefaultInputRunning() = 0;
    virtual bool isDefaultOutputRunning() = 0;
};

} // namespace pavonel
