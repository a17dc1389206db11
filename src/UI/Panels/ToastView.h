#pragma once

#include "UI/Panels/FloatingPanel.h"

namespace pavonel {

/// What stands on the toast: a symbol and at most two lines of text.
class ToastView final : public QWidget {
public:
    ToastView(FloatingPanel &panel, const QString &text, const QString &symbol);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Palette &palette_;
    QString text_;
    QString symbol_;
};

} // namespace pavonel
