#pragma once

#include "Platform/Screens.h"

namespace pavonel {

/// The screens that Qt sees. The main one is the screen of the pointer, else the primary one.
class QtScreens final : public Screens {
public:
    std::vector<Screen> all() override;
};

} // namespace pavonel
