#pragma once

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace pavonel {

/// Side by side, or one below the other, with no room between and around but what is asked for. Without a
/// widget to lay out it is to be added to another layout.
template <class Layout> Layout *layOut(QWidget *of, const QMargins &margins = {}, int spacing = 0) {
    auto *layout = new Layout(of);
    layout->setContentsMargins(margins);
    layout->setSpacing(spacing);
    return layout;
}

inline QHBoxLayout *line(QWidget *of = nullptr, const QMargins &margins = {}, int spacing = 0) {
    return layOut<QHBoxLayout>(of, margins, spacing);
}
inline QVBoxLayout *column(QWidget *of = nullptr, const QMargins &margins = {}, int spacing = 0) {
    return layOut<QVBoxLayout>(of, margins, spacing);
}

/// In the middle, as wide as it goes.
inline void putInMiddle(QWidget *of, QWidget *content, const QMargins &margins) {
    QHBoxLayout *place = line(of, margins);
    place->addStretch(1);
    place->addWidget(content, 100'000);
    place->addStretch(1);
}

} // namespace pavonel
