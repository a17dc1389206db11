#pragma once

#include "UI/Controls/CardRow.h"

#include <QImage>
#include <QPointer>

#include <functional>

class QLineEdit;

namespace pavonel {

class Button;
class Text;

/// An entry of a list: a picture where there is one, a text on one line, a lesser one behind it, and a button
/// that removes the entry.
class ListRow : public CardRow {
public:
    struct Entry {
        QString text;
        QString detail = {};
        QImage picture = {};
    };

    static int pictureSide();

    /// In the middle of `place`, one behind the other; the detail gives way first.
    static void draw(QPainter &painter, const QRectF &place, const Entry &entry, const QColor &ink,
                     const QColor &detailInk);

    /// `remove` may destroy the row, as may `edit`, which is given another text. Where there is an `edit`, a
    /// double click or F2 lets the text be edited in its place.
    ListRow(const Entry &entry, std::function<void()> remove, std::function<void(const QString &)> edit = {});

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void beginEditing();
    void endEditing();

    QString whole_; ///< The text, of which the row shows what fits.
    std::function<void(const QString &)> edit_;
    QPointer<QLineEdit> field_; ///< While it is edited.
    Entry entry_;
    Button *remove_;
};

/// Offers to take back the last removal from what stands above it; not there before the first one.
class UndoRow : public CardRow {
public:
    UndoRow();

    /// `what` was removed; `undo` brings it back.
    void offer(const QString &what, std::function<void()> undo);

private:
    Text *text_;
    Button *button_;
    std::function<void()> undo_;
};

} // namespace pavonel
