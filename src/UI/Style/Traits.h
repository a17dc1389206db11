#pragma once

#include <QString>

class QWidget;

/// What a control tells the style beyond what Qt's options do. The widget's properties keep it, so that the
/// style need not know our classes.
namespace pavonel {

enum class ButtonRole {
    plain,
    prominent, ///< What most people want to do here; at most one a page.
    bare,      ///< Only its symbol, until the pointer or the keyboard is there.
    disc,      ///< Round, for a letter; one that can be checked shows it by its colour.
    entry,     ///< Of the sidebar: as wide as that, with its symbol at the left.
    tile,      ///< Its icon in small above its text, one of several to choose from.
    notice,    ///< On a notice, which never has the keyboard and has one size.
    noticeProminent,
    noticeClose,
};

/// Buttons that say nothing, such as those of Qt's dialogs, are plain.
struct ButtonTraits {
    ButtonRole role = ButtonRole::plain;
    QString symbol = {}; ///< Before the text, or in its place.

    static ButtonTraits of(const QWidget *widget);
    void giveTo(QWidget &widget) const;

    bool isNotice() const { return role >= ButtonRole::notice; }
};

/// From the right edge of a round button to that of its symbol, in points.
int besideSymbol();

/// Of a switch's knob that is on its way: 0 is off, 1 is on.
constexpr char knobProperty[] = "knob";

} // namespace pavonel
