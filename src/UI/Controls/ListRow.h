#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/CardRow.h"

#include <QImage>

#include <functional>

namespace pavonel {

class Button;

/// An entry of a list: a picture where there is one, a text on one line, a lesser one behind it, and a button
/// that removes the entry.
class ListRow : public CardRow, public AccessibleControl {
public:
    struct Entry {
        QString text;
        QString detail = {};
        QImage picture = {};
    };

    /// `remove` may destroy the row.
    ListRow(Look &look, const Entry &entry, std::function<void()> remove);

    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Entry entry_;
    Button *remove_;
};

} // namespace pavonel
