#pragma once

#include "Platform/Pointer.h"

#include <memory>

namespace pavonel {

class GnomeExtension;

/// The pointer, as our extension of GNOME Shell tells of it.
class GnomePointer final : public Pointer {
public:
    explicit GnomePointer(std::shared_ptr<GnomeExtension> extension) : extension_(std::move(extension)) {}

    std::optional<QPointF> position() override;
    QString limitation() const override;

private:
    std::shared_ptr<GnomeExtension> extension_;
};

} // namespace pavonel
