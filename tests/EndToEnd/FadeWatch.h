#pragma once

#include "support/XClient.h"

#include <QString>

#include <map>

namespace pavonel::test {

/// Sees from outside how the windows that open on an X server change their opacity while it is asked.
class FadeWatch {
public:
    explicit FadeWatch(const QByteArray &display);

    /// At how many distinct instants of the server's clock a window of this title did so, of several windows
    /// the one that did most often.
    int steps(const QString &title);

private:
    struct Fading {
        QString title;
        xcb_timestamp_t last = 0; ///< Milliseconds.
        int steps = 0;
    };

    void note(const xcb_property_notify_event_t &change);
    void select(xcb_window_t window, std::uint32_t mask);

    XClient client_;
    const xcb_atom_t opacity_;
    std::map<xcb_window_t, Fading> windows_;
};

} // namespace pavonel::test
