#include "Platform/Linux/X11/X11IdleTime.h"

#include "Platform/Linux/X11/X11Connection.h"

#include <QByteArrayView>

#include <chrono>
#include <cstddef>
#include <optional>
#include <utility>

#include <xcb/screensaver.h>
#include <xcb/sync.h>

namespace pavonel {

namespace {

/// Asks the server each time, and waits for the answer.
class QueriedIdleTime final : public IdleTime {
public:
    explicit QueriedIdleTime(std::shared_ptr<X11Connection> connection)
        : connection_(std::move(connection)) {}

    Seconds idleSeconds() override {
        const auto cookie = xcb_screensaver_query_info(connection_->xcb(), connection_->root());
        const XReply<xcb_screensaver_query_info_reply_t> info(
            xcb_screensaver_query_info_reply(connection_->xcb(), cookie, nullptr));
        return info ? info->ms_since_user_input / 1000.0 : 0;
    }

private:
    std::shared_ptr<X11Connection> connection_;
};

using Milliseconds = std::chrono::milliseconds;

/// Shorter spells are told neither when they begin nor when they end: who types pauses for a second or two
/// all the time, and each notice is a wake-up.
constexpr Milliseconds shortestSpell{5000};

Milliseconds fromSync(const xcb_sync_int64_t &value) {
    return Milliseconds((std::int64_t{value.hi} << 32) | value.lo);
}

xcb_sync_int64_t toSync(Milliseconds value) {
    return {static_cast<std::int32_t>(value.count() >> 32), static_cast<std::uint32_t>(value.count())};
}

/// The name follows the length at once; the library's own accessor looks for it behind the padding.
QByteArrayView nameOf(const xcb_sync_systemcounter_t &counter) {
    const auto *bytes = reinterpret_cast<const char *>(&counter);
    return {bytes + offsetof(xcb_sync_systemcounter_t, name_len) + sizeof counter.name_len, counter.name_len};
}

/// The server's counter of idle milliseconds; XCB_NONE where it has none.
xcb_sync_counter_t idleCounter(xcb_connection_t *xcb) {
    const auto *extension = xcb_get_extension_data(xcb, &xcb_sync_id);
    if (!extension || !extension->present)
        return XCB_NONE;
    const XReply<xcb_sync_initialize_reply_t> version(xcb_sync_initialize_reply(
        xcb, xcb_sync_initialize(xcb, XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION), nullptr));
    const XReply<xcb_sync_list_system_counters_reply_t> counters(
        xcb_sync_list_system_counters_reply(xcb, xcb_sync_list_system_counters(xcb), nullptr));
    if (!version || !counters)
        return XCB_NONE;
    auto each = xcb_sync_list_system_counters_counters_iterator(counters.get());
    for (; each.rem > 0; xcb_sync_systemcounter_next(&each)) {
        if (nameOf(*each.data) == "IDLETIME")
            return each.data->counter;
    }
    return XCB_NONE;
}

/// Is told by the server when a spell has lasted, and when it ends.
class ReportedIdleTime final : public IdleTime {
public:
    ReportedIdleTime(std::shared_ptr<X11Connection> connection, xcb_sync_counter_t counter)
        : connection_(std::move(connection)) {
        const auto *extension = xcb_get_extension_data(connection_->xcb(), &xcb_sync_id);
        const auto alarmNotify = static_cast<std::uint8_t>(extension->first_event + XCB_SYNC_ALARM_NOTIFY);
        listening_ = connection_->listen([this, alarmNotify](const xcb_generic_event_t &event) {
            if ((event.response_type & 0x7f) == alarmNotify)
                notice(reinterpret_cast<const xcb_sync_alarm_notify_event_t &>(event));
        });
        began_ = createAlarm(counter, XCB_SYNC_TESTTYPE_POSITIVE_TRANSITION);
        ended_ = createAlarm(counter, XCB_SYNC_TESTTYPE_NEGATIVE_TRANSITION);
        const XReply<xcb_sync_query_counter_reply_t> now(xcb_sync_query_counter_reply(
            connection_->xcb(), xcb_sync_query_counter(connection_->xcb(), counter), nullptr));
        if (now && fromSync(now->counter_value) >= shortestSpell)
            lastInput_ = Clock::now() - fromSync(now->counter_value);
    }

    ~ReportedIdleTime() override {
        xcb_sync_destroy_alarm(connection_->xcb(), began_);
        xcb_sync_destroy_alarm(connection_->xcb(), ended_);
        connection_->flush();
    }

    Seconds idleSeconds() override {
        if (!lastInput_ || !connection_->isAlive())
            return 0;
        return std::chrono::duration<Seconds>(Clock::now() - *lastInput_).count();
    }

private:
    using Clock = std::chrono::steady_clock; // the clock of the server's counter

    xcb_sync_alarm_t createAlarm(xcb_sync_counter_t counter, xcb_sync_testtype_t test) {
        xcb_sync_create_alarm_value_list_t values{};
        values.counter = counter;
        values.valueType = XCB_SYNC_VALUETYPE_ABSOLUTE;
        values.value = toSync(shortestSpell);
        values.testType = test;
        values.events = 1;
        constexpr std::uint32_t given = XCB_SYNC_CA_COUNTER | XCB_SYNC_CA_VALUE_TYPE | XCB_SYNC_CA_VALUE |
                                        XCB_SYNC_CA_TEST_TYPE | XCB_SYNC_CA_DELTA | XCB_SYNC_CA_EVENTS;
        const xcb_sync_alarm_t alarm = xcb_generate_id(connection_->xcb());
        xcb_sync_create_alarm_aux(connection_->xcb(), alarm, given, &values);
        return alarm;
    }

    void notice(const xcb_sync_alarm_notify_event_t &event) {
        if (event.alarm == began_)
            lastInput_ = Clock::now() - fromSync(event.counter_value);
        else if (event.alarm == ended_)
            lastInput_.reset();
    }

    std::shared_ptr<X11Connection> connection_;
    X11Connection::SubscriptionHandle listening_;
    xcb_sync_alarm_t began_ = XCB_NONE;
    xcb_sync_alarm_t ended_ = XCB_NONE;
    std::optional<Clock::time_point> lastInput_; ///< Absent while the user is there.
};

} // namespace

std::unique_ptr<IdleTime> x11::makeIdleTime(std::shared_ptr<X11Connection> connection) {
    if (const auto counter = idleCounter(connection->xcb()))
        return std::make_unique<ReportedIdleTime>(std::move(connection), counter);
    return makeQueriedIdleTime(std::move(connection));
}

std::unique_ptr<IdleTime> x11::makeQueriedIdleTime(std::shared_ptr<X11Connection> connection) {
    const auto *extension = xcb_get_extension_data(connection->xcb(), &xcb_screensaver_id);
    if (!extension || !extension->present)
        return nullptr;
    return std::make_unique<QueriedIdleTime>(std::move(connection));
}

} // namespace pavonel
