#pragma once

#include "support/generousTimeout.h"

#include <QDeadlineTimer>
#include <QThread>

namespace pavonel::test {

/// Waits until `condition` holds without letting a loop run, for the time before there is an application
/// object; false when it never does.
template <class Condition> bool holdsSoon(Condition condition) {
    const QDeadlineTimer deadline(generousTimeout);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(5);
    }
    return true;
}

} // namespace pavonel::test
