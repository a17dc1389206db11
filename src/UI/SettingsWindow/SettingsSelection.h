#pragma once

#include "Core/Observable.h"
#include "UI/SettingsWindow/Page.h"

namespace pavonel {

/// Which page the settings window shows; outlives its opening and closing.
class SettingsSelection final : public Observable {
public:
    Published<Page> page{*this, Page::breaks};
};

} // namespace pavonel
