#pragma once

#include <QString>

namespace pavonel {

/// Where the files lie that come with the program: beside it in a build folder and in a bundle, in the
/// prefix's libexec and share folders when it is installed as prefix/bin/pavonel.
class ProgramFiles {
public:
    /// `program` is the absolute path of the executable.
    explicit ProgramFiles(const QString &program);

    static ProgramFiles ofThisProgram();

    QString program() const { return program_; }

    /// The path of one of our own tools; empty when there is none of that name.
    QString tool(const QString &name) const;

    /// What to run when `path` is asked for: the file there or, where there is none, our own tool of the same
    /// name. Empty when there is neither or the path is not absolute.
    QString executable(const QString &path) const;

    /// Where our own tools lie.
    QString toolsFolder() const;

    /// The folder of our sounds, which need not exist.
    QString soundsFolder() const;

private:
    QString firstFolder(const QString &beside, const QString &underPrefix) const;

    QString program_;
    QString folder_;
};

} // namespace pavonel
