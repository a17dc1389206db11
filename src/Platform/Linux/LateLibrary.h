#pragma once

#include <QLibrary>
#include <QString>

namespace pavonel {

/// A system library that is looked for at run time, because machines without it must start the program too.
/// Stays loaded to the end of the process: such libraries keep threads and exit handlers of their own.
class LateLibrary {
public:
    /// `name` without "lib" and suffix; `version` is the one of its binary interface.
    LateLibrary(const QString &name, int version) : library_(name, version) {
        library_.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        complete_ = library_.load();
    }

    /// False when the library is missing or lacks a function that was asked for.
    bool isComplete() const { return complete_; }

    template <class Function> void resolve(Function *&function, const char *symbol) {
        function = complete_ ? reinterpret_cast<Function *>(library_.resolve(symbol)) : nullptr;
        complete_ = complete_ && function;
    }

private:
    QLibrary library_;
    bool complete_ = false;
};

} // namespace pavonel
