#include "EndToEnd/ProcessesIn.h"

#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>

namespace pavonel::test {

std::vector<qint64> processesIn(const QString &folder) {
    const QString within = QFileInfo(folder).canonicalFilePath() + u'/';
    std::vector<qint64> result;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const QString executable = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(name));
        if (within.size() > 1 && executable.startsWith(within) && name.toLongLong() > 1)
            result.push_back(name.toLongLong());
    }
    return result;
}

bool endProcessesIn(const QString &folder) {
    return waitUntil([&folder] {
        for (const qint64 process : processesIn(folder))
            ::kill(static_cast<pid_t>(process), SIGKILL);
        return processesIn(folder).empty();
    });
}

} // namespace pavonel::test
