#pragma once

#include "UI/Controls/Look.h"

#include <QWidget>

namespace pavonel {

/// One of the product's symbols in the accent's ink. Says nothing to a screen reader: a text beside it does.
class SymbolView : public QWidget {
public:
    SymbolView(Look &look, const QString &symbol, int side);

    QSize sizeHint() const override { return {side_, side_}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look &look_;
    QString symbol_;
    int side_;
};

} // namespace pavonel
