#pragma once

#include "Platform/Service.h"

#include <QPointF>

#include <optional>

namespace pavonel {

class Pointer : public Service {
public:
    /// Where the mouse pointer is, in the coordinates of `Screen`; absent where the desktop keeps that to
    /// itself. Cheap enough to be asked thirty times a second.
    virtual std::optional<QPointF> position() = 0;
};

} // namespace pavonel
