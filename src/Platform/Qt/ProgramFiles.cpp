#include "Platform/Qt/ProgramFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace pavonel {

ProgramFiles::ProgramFiles(const QString &program)
    : program_(program), folder_(QFileInfo(program).absolutePath()) {}

ProgramFiles ProgramFiles::ofThisProgram() {
    return ProgramFiles(QCoreApplication::applicationFilePath());
}

QString ProgramFiles::firstFolder(const QString &beside, const QString &underPrefix) const {
    const QString besideProgram = folder_ + beside;
    return QDir(besideProgram).exists() ? besideProgram
                                        : QDir::cleanPath(folder_ + QStringLiteral("/..") + underPrefix);
}

QString ProgramFiles::tool(const QString &name) const {
    if (name.isEmpty() || name.contains(u'/'))
        return {};
    const QFileInfo tool(toolsFolder() + u'/' + name);
    return tool.isFile() && tool.isExecutable() ? tool.filePath() : QString();
}

QString ProgramFiles::executable(const QString &path) const {
    const QFileInfo wanted(path);
    if (!wanted.isAbsolute())
        return {};
    return wanted.exists() ? path : tool(wanted.fileName());
}

QString ProgramFiles::toolsFolder() const {
    const auto folder = QStringLiteral("/libexec/pavonel");
    return firstFolder(folder, folder);
}

QString ProgramFiles::soundsFolder() const {
    return firstFolder(QStringLiteral("/resources/sounds"), QStringLiteral("/share/pavonel/sounds"));
}

} // namespace pavonel
