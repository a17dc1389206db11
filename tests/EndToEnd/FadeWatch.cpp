#include "EndToEnd/FadeWatch.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace pavonel::test {

FadeWatch::FadeWatch(const QByteArray &display)
    : client_(display), opacity_(client_.atom("_NET_WM_WINDOW_OPACITY")) {
    select(client_.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

int FadeWatch::steps(const QString &title) {
    while (const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event{
        xcb_poll_for_event(client_.xcb()), &std::free}) {
        const int kind = event->response_type & 0x7f;
        if (kind == XCB_CREATE_NOTIFY) {
            const auto window = reinterpret_cast<const xcb_create_notify_event_t &>(*event).window;
            select(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
        } else if (kind == XCB_PROPERTY_NOTIFY) {
            note(reinterpret_cast<const xcb_property_notify_event_t &>(*event));
        }
    }
    int most = 0;
    for (const auto &[window, fading] : windows_)
        most = std::max(most, fading.title == title ? fading.steps : 0);
    return most;
}

/// What was sent together arrives within a moment.
void FadeWatch::note(const xcb_property_notify_event_t &change) {
    constexpr xcb_timestamp_t moment = 5; // milliseconds
    if (change.atom != opacity_)
        return;
    Fading &fading = windows_[change.window];
    if (fading.title.isEmpty())
        fading.title = QString::fromUtf8(client_.bytes(change.window, "_NET_WM_NAME"));
    if (change.time - fading.last < moment)
        return;
    fading.last = change.time;
    ++fading.steps;
}

void FadeWatch::select(xcb_window_t window, std::uint32_t mask) {
    xcb_change_window_attributes(client_.xcb(), window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(client_.xcb());
}

} // namespace pavonel::test
