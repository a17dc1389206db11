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

    static constexpr int pictureSide = 24;

    /// In the middle of `place`, one behind the other; the detail gives way first.
    static void draw(QPainter &painter, const QRectF &place, const Entry &entry, const Look &look,
                     const QColor &ink, const QColor &detailInk);

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
