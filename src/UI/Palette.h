#pragma once

#include "Platform/Appearance.h"

#include <QColor>

namespace pavonel {

/// What a button that we draw ourselves is painted with.
struct ButtonColours {
    QColor fill;
    QColor hovered; ///< The fill under the pointer.
    QColor pressed;
    QColor ink;
    QColor outline; ///< One device pixel wide; transparent for none.
};

/// The colours of all windows but the break screen. Every ink reaches a contrast of 4.5 to 1 on every surface
/// that it is meant for, whatever accent the user chose and whatever lies below a translucent panel.
struct Palette {
    explicit Palette(const AppearanceWishes &wishes);

    QColor window;
    QColor sidebar;
    QColor card;
    QColor cardOutline; ///< Translucent, as are all lines.
    QColor hairline;
    QColor panel; ///< The material of the floating panels, a little translucent.
    QColor
        panelOutline; ///< Their outermost device pixel, which sets them off from windows of the same colour.

    QColor text; ///< On every surface.
    QColor secondaryText;
    QColor failure;    ///< As an ink.
    QColor accentText; ///< The accent as an ink, also on a selected row.

    QColor accent;    ///< Fills.
    QColor onAccent;  ///< The ink on such a fill.
    QColor selection; ///< A selected row of the sidebar.
    QColor track;     ///< A switch that is off, and other shapes that must be told from the surface.

    ButtonColours prominentButton;
    ButtonColours plainButton; ///< On cards and windows.
    ButtonColours panelButton; ///< On the floating panels.
    ButtonColours closeButton; ///< The round one on the heads-up.
};

/// As the accessibility guidelines for the web define it: 1 to 21. Both colours count as opaque.
double contrast(const QColor &one, const QColor &other);

/// What the eye gets when `above`, translucent or not, lies over the opaque `below`.
QColor blended(const QColor &above, const QColor &below);

} // namespace pavonel
