#pragma once

#include "UI/Controls/Look.h"

#include <QWidget>

#include <concepts>
#include <functional>
#include <type_traits>
#include <vector>

namespace pavonel {

/// Anything that can stand in the column of a page or of a card, described before it is built: one of the
/// rows (`Rows.h`), a `Card`, or a function that makes a widget of one's own.
class Element {
public:
    template <class Description>
    requires requires(const Description &description, Look &look) {
        { description.make(look) } -> std::convertible_to<QWidget *>;
    }
    Element(Description description)
        : make_([description = std::move(description)](Look &look) { return description.make(look); }) {}

    template <class Function>
    requires std::is_invocable_r_v<QWidget *, const Function &, Look &> Element(Function function)
        : make_(std::move(function)) {}

    /// A new widget, which the caller owns. The look must outlive it.
    QWidget *make(Look &look) const { return make_(look); }

private:
    std::function<QWidget *(Look &)> make_;
};

using Elements = std::vector<Element>;

/// Mixed into widgets of a page that show a setting: told from the loop after any setting changed.
class Refreshable {
public:
    Refreshable() = default;
    Refreshable(const Refreshable &) = delete;
    Refreshable &operator=(const Refreshable &) = delete;

    virtual void refresh() = 0;

protected:
    ~Refreshable() = default;
};

/// Lets a widget be seen or not. One that has not come to its place yet is seen as soon as it is there; to
/// show it before would open a window of its own.
inline void showInPlace(QWidget &widget, bool seen) {
    if (!seen || widget.parentWidget())
        widget.setVisible(seen);
}

} // namespace pavonel
