#pragma once

#include <QWidget>

#include <vector>

class QHBoxLayout;

namespace pavonel {

/// One row of a card, for which Qt has no widget: what is added stands side by side, and a hairline sets the
/// row off from what is above.
class CardRow : public QWidget {
public:
    static constexpr int margin = 16; ///< Of the content, left and right, in points.

    CardRow();

    /// Keeps its own size.
    void add(QWidget *widget);

    /// One below the other, in the middle of the row; they take what is left over.
    void addLines(const std::vector<QWidget *> &widgets);

    /// A label with a note under it where there is one.
    void addLabel(const QString &label, const QString &note = {});

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QHBoxLayout *line_;
};

} // namespace pavonel
