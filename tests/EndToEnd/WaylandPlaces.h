#pragma once

#include "EndToEnd/WaylandDesktop.h"
#include "support/KWin.h"
#include "support/MessageBus.h"
#include "support/Sway.h"

#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace pavonel::test {

struct OnSway {
    OnSway() { desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address()); }
    MessageBus bus;
    WaylandDesktop desktop{std::make_unique<Sway>()};
};

/// As other compositors are that speak the same protocols.
struct OnSwayWithoutIpc : OnSway {
    OnSwayWithoutIpc() { desktop.environment().remove(QStringLiteral("SWAYSOCK")); }
};

/// KWin brings a bus.
struct OnKWin {
    WaylandDesktop desktop{std::make_unique<KWin>()};
};

struct NameOfPlace {
    template <class Place> static std::string GetName(int) {
        return std::is_same_v<Place, OnKWin>   ? "KWin"
               : std::is_same_v<Place, OnSway> ? "sway"
                                               : "protocols_alone";
    }
};

} // namespace pavonel::test
