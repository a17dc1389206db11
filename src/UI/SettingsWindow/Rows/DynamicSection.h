#pragma once

#include "UI/SettingsWindow/Rows/Element.h"

namespace pavonel {

class MainLoop;
class Observable;

/// A part of a page that is another one in every state of what it watches: made anew, from the loop, after
/// each change. The keyboard stays in it, and what it says anew is announced.
struct DynamicSection {
    MainLoop &loop;
    std::vector<Observable *> watched;
    std::function<Elements()> content;
    int spacing = 0; ///< Points between the elements.

    QWidget *make(Visuals &visuals) const;
};

} // namespace pavonel
