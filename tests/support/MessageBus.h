#pragma once

#include "support/ChildProcess.h"

#include <QTemporaryDir>

namespace pavonel::test {

/// A private message bus. Nothing is started on it by itself; it ends with this object.
class MessageBus {
public:
    /// Fails the test when there is none to be had.
    MessageBus();

    QString address() const { return address_; }

private:
    QTemporaryDir folder_;
    QString address_;
    ChildProcess daemon_;
};

} // namespace pavonel::test
