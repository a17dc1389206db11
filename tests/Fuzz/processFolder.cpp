#include "Platform/Linux/Applications/ProcessFolder.h"

#include "Fuzz/Target.h"
#include "Platform/Linux/Applications/ApplicationIdentity.h"
#include "Platform/Linux/Applications/DesktopFiles.h"
#include "Platform/Linux/Applications/ProgramName.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>

namespace pavonel::fuzz {

namespace {

constexpr ProcessId process = 4711;

/// A folder of processes with one in it.
class Processes {
public:
    Processes() {
        QDir().mkpath(path("root"));
        root_ = ::open(QFile::encodeName(folder_.path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        require(root_ >= 0);
    }

    void write(const char *name, const QByteArray &text) const {
        QFile file(path(name));
        require(file.open(QFile::WriteOnly | QFile::Truncate) && file.write(text) == text.size());
    }
    int root() const { return root_; }

private:
    QString path(const char *name) const {
        return folder_.filePath(QStringLiteral("%1/%2").arg(process).arg(QLatin1String(name)));
    }

    QTemporaryDir folder_;
    int root_ = -1;
};

DesktopFileIndex someApplications() {
    DesktopFileIndex index;
    index.add(QStringLiteral("org.example.Any"), DesktopFile{"any", false, QStringLiteral("Any")});
    return index;
}

} // namespace

/// Four texts of /proc, a byte of 0xff between them.
void processFolder(const QByteArray &input) {
    static const Processes processes;
    static const DesktopFileIndex index = someApplications();
    const QByteArrayList texts = input.split('\xff');
    constexpr const char *names[] = {"cmdline", "cgroup", "status", "root/.flatpak-info"};
    for (qsizetype at = 0; at < 4; ++at)
        processes.write(names[at], texts.value(at));
    const ProcessFolder folder(processes.root(), process);
    static_cast<void>(folder.isThread());
    static_cast<void>(programName(folder.arguments()));
    static_cast<void>(identifierOfUnit(folder.unit()));
    static_cast<void>(identify(folder, index));
}

} // namespace pavonel::fuzz
