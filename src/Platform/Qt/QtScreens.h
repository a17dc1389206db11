#pragma once

#include "Platform/Screens.h"

#include <QPointer>
#include <QScreen>

#include <memory>

namespace pavonel {

/// The screen on which the desktop put our last panel: where the user works, as far as it lets us know.
using WorkedOn = QPointer<QScreen>;

/// The screens as Qt knows them. The main one is `workedOn`, else the primary one.
class QtScreens final : public Screens {
public:
    explicit QtScreens(std::shared_ptr<WorkedOn> workedOn = std::make_shared<WorkedOn>());

    std::vector<Screen> all() override;
    bool keepNames() const override { return false; }

private:
    std::shared_ptr<WorkedOn> workedOn_;
};

} // namespace pavonel
