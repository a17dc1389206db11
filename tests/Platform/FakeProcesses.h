#pragma once

#include "Platform/Applications.h"
#include "support/files.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <ctime>
#include <vector>

#include <gtest/gtest.h>

namespace pavonel::test {

/// A folder that looks like /proc.
class FakeProcesses {
public:
    QByteArray root() const { return folder_.path().toLocal8Bit(); }

    void add(int id, const QString &executable, const QByteArray &unit = {}) {
        QDir(folder_.path()).mkdir(QString::number(id));
        QFile::link(executable, path(id, "exe"));
        writeFile(path(id, "cmdline"), executable.toLocal8Bit() + '\0');
        if (!unit.isEmpty())
            writeGroups(id, "0::/user.slice/app.slice/" + unit + '\n');
    }
    void writeGroups(int id, const QByteArray &groups) { writeFile(path(id, "cgroup"), groups); }
    void remove(int id) { QDir(folder_.filePath(QString::number(id))).removeRecursively(); }

    /// Another process under the number of one that ended: its folder is another one.
    void replace(int id, const QString &executable) {
        add(id + 1'000'000, executable);
        remove(id);
        QDir(folder_.path()).rename(QString::number(id + 1'000'000), QString::number(id));
    }
    void run(int id, const QString &executable) {
        QFile::remove(path(id, "exe"));
        QFile::link(executable, path(id, "exe"));
        writeFile(path(id, "cmdline"), executable.toLocal8Bit() + '\0');
    }
    /// What the kernel says of the last number that it gave.
    void tellLast(int id) {
        writeFile(folder_.filePath(QStringLiteral("loadavg")),
                  "0.31 1.21 1.81 1/146 " + QByteArray::number(id) + '\n');
    }
    /// Gives the process the number of a thread of another one.
    void makeThread(int id, int process) {
        writeFile(path(id, "status"), "Name:\tx\nTgid:\t" + QByteArray::number(process) + "\nNgid:\t0\n");
    }
    QString path(int id, const char *file) const {
        return folder_.filePath(QStringLiteral("%1/%2").arg(QString::number(id), QString::fromLatin1(file)));
    }

private:
    QTemporaryDir folder_;
};

inline QStringList identifiers(const std::vector<Application> &applications) {
    QStringList result;
    for (const Application &application : applications)
        result.append(application.bundleIdentifier);
    return result;
}

/// Of this thread.
inline double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

} // namespace pavonel::test
