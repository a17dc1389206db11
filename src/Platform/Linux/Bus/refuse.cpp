#include "Platform/Linux/Bus/refuse.h"

#include <QDBusError>

namespace pavonel {

void refuse(const QDBusMessage &call, const QDBusConnection &bus, const QString &error,
            const QString &sentence) {
    call.setDelayedReply(true); // or an empty reply would follow
    if (call.isReplyRequired())
        bus.send(call.createErrorReply(error, sentence));
}

bool refuseOthersThan(const QString &signature, const QDBusMessage &call, const QDBusConnection &bus) {
    if (call.signature() == signature)
        return false;
    refuse(call, bus, QDBusError::errorString(QDBusError::InvalidArgs),
           QStringLiteral("These are not the arguments of %1.").arg(call.member()));
    return true;
}

} // namespace pavonel
