#pragma once

#include "Platform/ProcessLauncher.h"
#include "Platform/Qt/ProgramFiles.h"

namespace pavonel {

/// Starts programs that have nothing to do with us any more: a session of their own, no open files of ours,
/// nothing to read and nobody who reads them. The init process, not we, waits for their end.
class DetachedLauncher final : public ProcessLauncher {
public:
    explicit DetachedLauncher(ProgramFiles files) : files_(std::move(files)) {}

    bool launch(const QString &program, const QStringList &arguments,
                SearchPath searchPath = SearchPath::usual) override;
    QString limitation() const override;

private:
    ProgramFiles files_;
};

} // namespace pavonel
