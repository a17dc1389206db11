#pragma once

#include "Platform/Service.h"

#include <QByteArray>
#include <QStringList>

#include <variant>

namespace pavonel {

/// Runs other programs to their end.
class ToolRunner : public Service {
public:
    struct Ended {
        int status = 0;    ///< 0 is success; a program that was killed did not succeed.
        QByteArray output; ///< What it wrote to its standard output and its standard error.
        bool operator==(const Ended &) const = default;
    };
    struct NotStarted {
        QString reason; ///< In the system's words.
        bool operator==(const NotStarted &) const = default;
    };
    using Outcome = std::variant<Ended, NotStarted>;

    /// Runs `tool` (an absolute path) and blocks the calling thread, which may be any, until it has ended.
    /// Where the path does not exist, our own tool of the same name stands in for it.
    virtual Outcome run(const QString &tool, const QStringList &arguments) = 0;
};

} // namespace pavonel
