#pragma once

#include "support/ChildProcess.h"

#include <QTemporaryDir>

namespace pavonel::test {

/// A private message bus. It ends with this object, and so does what it started.
class MessageBus {
public:
    /// Fails the test when there is none to be had. Nothing is started by itself unless `services` is a
    /// folder of service files; what they name then runs in `environment`.
    explicit MessageBus(const QString &services = {},
                        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

    QString address() const { return address_; }

private:
    QTemporaryDir folder_;
    QString address_;
    ChildProcess daemon_;
};

} // namespace pavonel::test
