#pragma once

#include "support/generousTimeout.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace pavonel::test {

/// Lets the main loop run until `condition` holds; false when it does not in this time.
template <class Condition> bool waitUntil(Condition condition, int milliseconds = generousTimeout) {
    const QDeadlineTimer deadline(milliseconds);
    QTimer alarm; // wakes the loop, which truly sleeps in between as it does in the program
    alarm.start(5);
    QEventLoop loop;
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace pavonel::test
