#pragma once

#include "Platform/Pointer.h"

namespace pavonel {

/// The pointer as Qt sees it.
class QtPointer final : public Pointer {
public:
    std::optional<QPointF> position() override;
};

} // namespace pavonel
