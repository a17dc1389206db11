#pragma once

#include "UI/Style/Visuals.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace pavonel {

/// Anything that can stand in the column of a page or of a card, described before it is built: makes a new
/// widget, which the caller owns. The visuals must outlive it.
using Element = std::function<QWidget *(Visuals &)>;

using Elements = std::vector<Element>;

/// Keeps a widget of a page true to the settings: `refresh` is called now, and from the loop after any
/// setting changed.
class Follower final : public QObject {
public:
    Follower(QWidget &widget, std::function<void()> refresh)
        : QObject(&widget), refresh_(std::move(refresh)) {
        refresh_();
    }

    void refresh() const { refresh_(); }

private:
    std::function<void()> refresh_;
};

inline void follow(QWidget &widget, std::function<void()> refresh) {
    new Follower(widget, std::move(refresh));
}

/// Lets a widget be seen or not. One that has not come to its place yet is seen as soon as it is there; to
/// show it before would open a window of its own.
inline void showInPlace(QWidget &widget, bool seen) {
    if (!seen || widget.parentWidget())
        widget.setVisible(seen);
}

} // namespace pavonel
