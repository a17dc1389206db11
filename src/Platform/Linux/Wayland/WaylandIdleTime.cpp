#include "Platform/Linux/Wayland/WaylandIdleTime.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <ext-idle-notify-v1-client-protocol.h>
#include <kde-idle-client-protocol.h>
#include <wayland-client.h>

namespace pavonel {

namespace {

using Clock = std::chrono::steady_clock;
using Offer = WaylandConnection::Offer;

struct Release {
    void operator()(wl_seat *seat) const {
        if (wl_seat_get_version(seat) >= WL_SEAT_RELEASE_SINCE_VERSION)
            wl_seat_release(seat);
        else
            wl_seat_destroy(seat);
    }
    void operator()(ext_idle_notifier_v1 *notifier) const { ext_idle_notifier_v1_destroy(notifier); }
    void operator()(ext_idle_notification_v1 *notice) const { ext_idle_notification_v1_destroy(notice); }
    void operator()(org_kde_kwin_idle *idle) const { org_kde_kwin_idle_destroy(idle); }
    void operator()(org_kde_kwin_idle_timeout *timeout) const { org_kde_kwin_idle_timeout_release(timeout); }
};

template <class Object> using Owned = std::unique_ptr<Object, Release>;

Owned<wl_seat> bindSeat(WaylandConnection &connection, const Offer &seat) {
    return Owned<wl_seat>(connection.bind<wl_seat>(seat, wl_seat_interface, WL_SEAT_RELEASE_SINCE_VERSION));
}

constexpr auto spell = static_cast<std::uint32_t>(WaylandIdleTime::shortestSpell.count());

/// The newest one: it alone looks past what holds the screen awake.
std::optional<Offer> newest(std::vector<Offer> offers) {
    const auto found = std::ranges::max_element(offers, {}, &Offer::version);
    return found == offers.end() ? std::nullopt : std::optional(*found);
}

} // namespace

/// What one seat's user does.
class WaylandIdleTime::Watch {
public:
    Watch() = default;
    Watch(const Watch &) = delete;
    Watch &operator=(const Watch &) = delete;
    virtual ~Watch() = default;

    Seconds idleSeconds() const {
        return lastInput_ ? std::chrono::duration<Seconds>(Clock::now() - *lastInput_).count() : 0;
    }

protected:
    /// For both kinds of notice alike.
    template <class Notice> static void begin(void *watch, Notice *) {
        static_cast<Watch *>(watch)->lastInput_ = Clock::now() - shortestSpell;
    }
    template <class Notice> static void end(void *watch, Notice *) {
        static_cast<Watch *>(watch)->lastInput_.reset();
    }

private:
    std::optional<Clock::time_point> lastInput_; ///< Absent while the user is there.
};

class WaylandIdleTime::ExtWatch final : public Watch {
public:
    ExtWatch(WaylandConnection &connection, const Offer &notifier, const Offer &seat)
        : notifier_(connection.bind<ext_idle_notifier_v1>(
              notifier, ext_idle_notifier_v1_interface,
              EXT_IDLE_NOTIFIER_V1_GET_INPUT_IDLE_NOTIFICATION_SINCE_VERSION)),
          seat_(bindSeat(connection, seat)), notice_(request()) {
        static const ext_idle_notification_v1_listener listener{begin, end};
        ext_idle_notification_v1_add_listener(notice_.get(), &listener, static_cast<Watch *>(this));
    }

private:
    ext_idle_notification_v1 *request() const {
        if (ext_idle_notifier_v1_get_version(notifier_.get()) >=
            EXT_IDLE_NOTIFIER_V1_GET_INPUT_IDLE_NOTIFICATION_SINCE_VERSION)
            return ext_idle_notifier_v1_get_input_idle_notification(notifier_.get(), spell, seat_.get());
        return ext_idle_notifier_v1_get_idle_notification(notifier_.get(), spell, seat_.get());
    }

    Owned<ext_idle_notifier_v1> notifier_;
    Owned<wl_seat> seat_;
    Owned<ext_idle_notification_v1> notice_;
};

class WaylandIdleTime::KdeWatch final : public Watch {
public:
    KdeWatch(WaylandConnection &connection, const Offer &idle, const Offer &seat)
        : idle_(connection.bind<org_kde_kwin_idle>(idle, org_kde_kwin_idle_interface, 1)),
          seat_(bindSeat(connection, seat)),
          timeout_(org_kde_kwin_idle_get_idle_timeout(idle_.get(), seat_.get(), spell)) {
        static const org_kde_kwin_idle_timeout_listener listener{begin, end};
        org_kde_kwin_idle_timeout_add_listener(timeout_.get(), &listener, static_cast<Watch *>(this));
    }

private:
    Owned<org_kde_kwin_idle> idle_;
    Owned<wl_seat> seat_;
    Owned<org_kde_kwin_idle_timeout> timeout_;
};

WaylandIdleTime::WaylandIdleTime(std::shared_ptr<WaylandConnection> connection)
    : connection_(std::move(connection)), listening_(connection_->onChange([this] { followOffers(); })) {
    followOffers();
}

WaylandIdleTime::~WaylandIdleTime() = default;

/// Seats come and go, and so does the service of a compositor that starts it again.
void WaylandIdleTime::followOffers() {
    const auto ext = newest(connection_->offers(ext_idle_notifier_v1_interface));
    const auto kde = newest(connection_->offers(org_kde_kwin_idle_interface));
    const auto seats = connection_->offers(wl_seat_interface);
    const auto &notifier = ext ? ext : kde;
    std::vector<Offer> wanted = notifier ? seats : std::vector<Offer>();
    if (!wanted.empty())
        wanted.push_back(*notifier);
    if (wanted == known_)
        return;
    known_ = std::move(wanted);
    watches_.clear();
    if (known_.empty())
        return;
    for (const Offer &seat : seats) {
        if (ext)
            watches_.push_back(std::make_unique<ExtWatch>(*connection_, *ext, seat));
        else
            watches_.push_back(std::make_unique<KdeWatch>(*connection_, *kde, seat));
    }
    connection_->flush();
}

Seconds WaylandIdleTime::idleSeconds() {
    const auto least =
        std::ranges::min_element(watches_, {}, [](const auto &each) { return each->idleSeconds(); });
    return least == watches_.end() ? 0 : (*least)->idleSeconds();
}

QString WaylandIdleTime::limitation() const {
    return watches_.empty() ? QStringLiteral("This desktop does not tell how long you have been away.")
                            : QString();
}

} // namespace pavonel
