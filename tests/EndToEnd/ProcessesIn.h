#pragma once

#include <QString>

#include <vector>

namespace pavonel::test {

/// The running processes whose program lies in a folder.
std::vector<qint64> processesIn(const QString &folder);

/// Kills them, and those that they start meanwhile. False when some are left.
bool endProcessesIn(const QString &folder);

} // namespace pavonel::test
