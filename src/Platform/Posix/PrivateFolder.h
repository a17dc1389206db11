#pragma once

#include <QString>

namespace pavonel {

/// Makes the folder and those above it where they are missing, all for this user alone, and closes it to
/// other users; whether its owner may write stays as it is. What cannot be done is left.
void makePrivateFolder(const QString &path);

} // namespace pavonel
