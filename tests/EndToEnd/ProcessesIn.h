#pragma once

#include <QString>

#include <vector>

namespace pavonel::test {

/// The running processes whose program lies in a folder.
std::vector<qint64> processesIn(const QString &folder);

/// Kills all that run for the user of this home folder, the scripts included that would start a program only
/// later. False when some are left.
bool endProcessesOf(const QString &home);

} // namespace pavonel::test
