#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

namespace pavonel {

/// Answers the call with an error in place of what its slot returns. `error` is the name of one.
void refuse(const QDBusMessage &call, const QDBusConnection &bus, const QString &error,
            const QString &sentence);

/// Whether the call has other arguments than those of `signature`, or longer ones than anybody sends who
/// means well; then it is refused. Qt takes a call with more arguments than there are for one with just
/// enough.
bool refuseOthersThan(const QString &signature, const QDBusMessage &call, const QDBusConnection &bus);

} // namespace pavonel
