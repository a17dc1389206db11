#pragma once

#include "Platform/Qt/ProgramFiles.h"
#include "Platform/ToolRunner.h"

#include <utility>

namespace pavonel {

/// Runs tools through QProcess, which needs no event loop for it.
class ToolProcesses final : public ToolRunner {
public:
    explicit ToolProcesses(ProgramFiles files) : files_(std::move(files)) {}

    Outcome run(const QString &tool, const QStringList &arguments) override;

private:
    ProgramFiles files_;
};

} // namespace pavonel
