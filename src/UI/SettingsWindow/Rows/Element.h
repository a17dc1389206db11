#pragma once

#include "UI/Controls/Visuals.h"

#include <QWidget>

#include <concepts>
#include <functional>
#include <type_traits>
#include <vector>

namespace pavonel {

/// Anything that can stand in the column of a page or of a card, described before it is built: one of the
/// rows (`Rows.h`), or a function that makes a widget of one's own.
class Element {
public:
    template <class Description>
    requires requires(const Description &description, Visuals &visuals) {
        { description.make(visuals) } -> std::convertible_to<QWidget *>;
    }
    Element(Description description)
        : make_([description = std::move(description)](Visuals &visuals) {
              return description.make(visuals);
          }) {}

    template <class Function>
    requires std::is_invocable_r_v<QWidget *, const Function &, Visuals &> Element(Function function)
        : make_(std::move(function)) {}

    /// A new widget, which the caller owns. The visuals must outlive it.
    QWidget *make(Visuals &visuals) const { return make_(visuals); }

private:
    std::function<QWidget *(Visuals &)> make_;
};

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
