#pragma once

#include "UI/Palette.h"

#include <QWidget>

namespace pavonel {

/// A text that wraps to its width, in one of the inks that can be read on every surface. Not a `QLabel`,
/// which is never a heading to assistive technology and does not break a word that is longer than the line.
class Text : public QWidget {
public:
    enum class Style {
        pageTitle,
        brand,
        cardTitle,
        cardSubtitle,
        label,
        secondary, ///< A subtitle or a sentence on a page.
        note,      ///< Small, under a label.
        failure,   ///< What went wrong.
    };

    Text(const QString &text, Style style);

    void setStyle(Style style);

    const QString &text() const { return text_; }
    void setText(const QString &text);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString text_;
    QColor Palette::*ink_ = nullptr;
};

} // namespace pavonel
