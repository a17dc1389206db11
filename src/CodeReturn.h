#pragma once

#include <QObject>
#include <QTimer>

namespace pavonel {

/// Gives the memory of the program's code back to the system when a window has gone: most of that code only
/// shows windows, and what counts time in between is little.
class CodeReturn final : public QObject {
public:
    /// Needs the application object.
    CodeReturn();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTimer pause_; ///< For windows that go together, and what comes with their end.
};

} // namespace pavonel
