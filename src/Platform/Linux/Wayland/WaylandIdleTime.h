#pragma once

#include "Platform/IdleTime.h"
#include "Platform/Linux/Wayland/WaylandConnection.h"

#include <chrono>
#include <memory>
#include <vector>

namespace pavonel {

/// The compositor tells when the user has touched nothing for a while and when he is back, so that reading
/// costs no wake-up; a shorter spell than `shortestSpell` reads as 0. With several seats it is the one that
/// was used last. Where the compositor knows only of a screen that is held awake, who watches a video counts
/// as present.
class WaylandIdleTime final : public IdleTime {
public:
    explicit WaylandIdleTime(std::shared_ptr<WaylandConnection> connection);
    ~WaylandIdleTime() override;

    Seconds idleSeconds() override;
    QString limitation() const override;

    static constexpr std::chrono::milliseconds shortestSpell{5000};

private:
    class Watch;
    class ExtWatch;
    class KdeWatch;

    void followOffers();

    std::shared_ptr<WaylandConnection> connection_;
    std::vector<WaylandConnection::Offer> known_; ///< What the watches stand on.
    std::vector<std::unique_ptr<Watch>> watches_; ///< One a seat.
    WaylandConnection::Listening listening_;
};

} // namespace pavonel
