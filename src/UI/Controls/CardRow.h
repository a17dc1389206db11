#pragma once

#include "UI/Controls/Visuals.h"

#include <QWidget>

class QHBoxLayout;
class QPainter;

namespace pavonel {

/// One row of a card, for which Qt has no widget: what is added stands side by side, and a hairline sets the
/// row off from what is above.
class CardRow : public QWidget {
public:
    static constexpr int margin = 16;      ///< Of the content, left and right, in points.
    static constexpr int air = 7;          ///< Above and below texts.
    static constexpr int betweenLines = 2; ///< From a label to its note.

    explicit CardRow(Visuals &visuals);

    /// Keeps its own size; the first one should be a text, which takes what is left over.
    void add(QWidget *widget);

    /// For a control that begins at the row's left edge and leaves room for its ring there.
    void addOutdented(QWidget *widget);

    /// A label with a note under it where there is one.
    void addLabel(const QString &label, const QString &note = {});

    /// The hairline above a row that begins at `y` in something as wide as the card.
    static void drawLine(QPainter &painter, const Visuals &visuals, double y, int width);

protected:
    void paintEvent(QPaintEvent *event) override;

    Visuals &visuals() const { return visuals_; }

private:
    Visuals &visuals_;
    QHBoxLayout *line_;
};

} // namespace pavonel
