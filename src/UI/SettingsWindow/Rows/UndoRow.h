#pragma once

#include "UI/Controls/CardRow.h"

#include <functional>

namespace pavonel {

class Button;
class Text;

/// Offers to take back the last removal from what stands above it; not there before the first one.
class UndoRow : public CardRow {
public:
    explicit UndoRow(Visuals &visuals);

    /// `what` was removed; `undo` brings it back.
    void offer(const QString &what, std::function<void()> undo);

private:
    Text *text_;
    Button *button_;
    std::function<void()> undo_;
};

} // namespace pavonel
