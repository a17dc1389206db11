#pragma once

#include "Platform/Service.h"

#include <QStringList>

namespace pavonel {

/// Starts other programs.
class ProcessLauncher : public Service {
public:
    /// Where the program finds others by their bare names.
    enum class SearchPath {
        usual,
        ownToolsFirst ///< Our own tools, then the system's and no others. Our "open" undoes that.
    };

    /// Starts `program` (an absolute path) and returns at once; the program outlives us. Where the path does
    /// not exist, our own tool of the same name stands in for it. False when nothing could be started.
    virtual bool launch(const QString &program, const QStringList &arguments,
                        SearchPath searchPath = SearchPath::usual) = 0;
};

} // namespace pavonel
