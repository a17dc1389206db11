#pragma once

#include "Platform/DisplayServices.h"
#include "UI/Palette.h"

#include <QFont>

class QPalette;

namespace pavonel {

/// What all controls share: colours, type sizes, and the way things move. A control reads it whenever it
/// paints, so that a repaint is all that a change of the user's wishes needs.
class Visuals {
public:
    explicit Visuals(const DisplayServices &display);

    const Palette &palette() const { return palette_; }

    /// The same colours as Qt hands them on.
    QPalette toolkitPalette() const;

    /// `size` is in points at the ordinary text size; a user with larger text gets a larger font.
    QFont font(int size, QFont::Weight weight = QFont::Normal) const;

    /// A length that grows along with the text.
    int length(int points) const;

    /// The height of something that holds a line of text, and is this high at the ordinary text size.
    int lineHeight(int points) const;

    MainLoop &loop() const;
    Appearance &appearance() const;

    /// Whether rounded windows can leave their corners out by translucency.
    bool canBlend() const;

    /// Reads the user's wishes for colours again.
    void refresh();

private:
    DisplayServices display_;
    Palette palette_;
};

/// Those of the application's style, which must be ours.
const Visuals &visuals();

} // namespace pavonel
