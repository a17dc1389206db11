#include "Platform/Linux/Bus/refuse.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusVariant>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int mostElements = 1000; // of a list or dictionary
constexpr qsizetype longestText = 65'536;

/// What is left, however little was read of it, is passed over as a whole.
void passOver(const QDBusArgument &list) {
    switch (list.currentType()) {
    case QDBusArgument::MapEntryType:
        list.beginMapEntry();
        return list.endMapEntry();
    case QDBusArgument::MapType:
        list.beginMap();
        return list.endMap();
    case QDBusArgument::ArrayType:
        list.beginArray();
        return list.endArray();
    case QDBusArgument::StructureType:
        list.beginStructure();
        return list.endStructure();
    default:
        list.asVariant();
    }
}

bool isLong(const QDBusArgument &list) {
    const bool isMap = list.currentType() == QDBusArgument::MapType;
    if (!isMap && list.currentType() != QDBusArgument::ArrayType)
        return false;
    int elements = 0;
    isMap ? list.beginMap() : list.beginArray();
    for (; !list.atEnd() && elements <= mostElements; ++elements)
        passOver(list);
    isMap ? list.endMap() : list.endArray(); // or Qt keeps it for ever
    return elements > mostElements;
}

bool isLong(const QVariant &value) {
    if (value.metaType() == QMetaType::fromType<QDBusVariant>())
        return isLong(value.value<QDBusVariant>().variant());
    if (value.metaType() == QMetaType::fromType<QDBusArgument>())
        return isLong(value.value<QDBusArgument>());
    if (value.metaType() == QMetaType::fromType<QStringList>())
        return value.toStringList().size() > mostElements;
    if (value.metaType() == QMetaType::fromType<QByteArray>())
        return value.toByteArray().size() > longestText;
    return value.metaType() == QMetaType::fromType<QString>() && value.toString().size() > longestText;
}

} // namespace

void refuse(const QDBusMessage &call, const QDBusConnection &bus, const QString &error,
            const QString &sentence) {
    call.setDelayedReply(true); // or an empty reply would follow
    if (call.isReplyRequired())
        bus.send(call.createErrorReply(error, sentence));
}

bool refuseOthersThan(const QString &signature, const QDBusMessage &call, const QDBusConnection &bus) {
    if (call.signature() != signature) {
        refuse(call, bus, QDBusError::errorString(QDBusError::InvalidArgs),
               QStringLiteral("These are not the arguments of %1.").arg(call.member()));
        return true;
    }
    const QVariantList arguments = call.arguments();
    if (std::ranges::none_of(arguments, [](const QVariant &argument) { return isLong(argument); }))
        return false;
    refuse(call, bus, QDBusError::errorString(QDBusError::LimitsExceeded),
           QStringLiteral("Nobody who means well sends as much as this."));
    return true;
}

} // namespace pavonel
