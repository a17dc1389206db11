#pragma once

#include "Platform/Service.h"

#include <QStringList>

namespace pavonel {

/// The named sounds of the system.
class Sounds : public Service {
public:
    /// Returns at once. An unknown name, or a machine without sound, is silent.
    virtual void play(const QString &name) = 0;

    /// Every name that can be played, in the order in which to offer them.
    virtual QStringList names() = 0;
};

} // namespace pavonel
