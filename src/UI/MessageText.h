#pragma once

#include <QFont>
#include <QTextLayout>

#include <memory>

class QPainter;

namespace pavonel {

/// A text of several lines: broken where it is too wide, its lines of about equal length, and cut with an
/// ellipsis where there are too many. Empty, it is as high as a line.
class MessageText {
public:
    MessageText(const QString &text, const QFont &font, double maxWidth, double maxHeight,
                Qt::AlignmentFlag alignment = Qt::AlignHCenter);

    double width() const { return width_; }
    double height() const { return lineHeight_ * lineCount_; }
    int lineCount() const { return lineCount_; }
    bool isCut() const { return !lastLine_.isEmpty(); }

    /// Of one line, in this font.
    static double lineHeight(const QFont &font);

    /// With the painter's pen; `top` is the middle of the upper edge, or its left end for a text on the left.
    void paint(QPainter &painter, QPointF top) const;

private:
    int breakLines(double width);
    int splitWords() const;
    void balance(double maxWidth);
    void cut(double maxWidth);

    QTextOption option() const;

    QFont font_;
    Qt::AlignmentFlag alignment_;
    double lineHeight_;
    double width_ = 0; ///< That the lines are broken at.
    int lineCount_ = 1;
    int maxLines_;
    std::unique_ptr<QTextLayout> layout_;
    QString lastLine_; ///< In place of the last line of the layout, when that is not the text's last.
};

} // namespace pavonel
