#pragma once

#include <QDir>
#include <QLockFile>

namespace pavonel::test {

/// Every test sees the processes of all others. Whoever starts a recorder, or counts on there being none,
/// takes turns with the rest.
class RecorderTurn {
public:
    RecorderTurn() { lock_.lock(); }

private:
    QLockFile lock_{QDir::temp().filePath(QStringLiteral("pavonel-test-recorder"))};
};

} // namespace pavonel::test
