#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace pavonel {

struct UsKey;

/// Whether sway's configuration binds these keys to something in its normal mode. Files that it includes are
/// not looked into.
bool isBoundBySway(const QByteArray &configuration, const UsKey &key);

} // namespace pavonel
