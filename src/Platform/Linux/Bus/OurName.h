#pragma once

#include <QString>

/// Where other processes find the one that runs.
namespace pavonel::ourName {

inline const QString service = QStringLiteral("org.pavonel.Pavonel");
inline const QString path = QStringLiteral("/org/pavonel/Pavonel");

} // namespace pavonel::ourName
