#include "EndToEnd/ProcessesIn.h"

#include "support/files.h"
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

bool endProcessesOf(const QString &home) {
    const QByteArray variable = "HOME=" + QFile::encodeName(home);
    return waitUntil([&variable] {
        bool isAnyLeft = false;
        for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
            if (name.toLongLong() <= 1 ||
                !readFile(QStringLiteral("/proc/%1/environ").arg(name)).split('\0').contains(variable))
                continue;
            ::kill(static_cast<pid_t>(name.toLongLong()), SIGKILL);
            isAnyLeft = true;
        }
        return !isAnyLeft;
    });
}

} // namespace pavonel::test
