#include "UI/SettingsWindow/Piece.h"

#include <QWidget>

namespace pavonel {

void letSee(QWidget &widget, bool seen) {
    if (!seen || widget.parentWidget())
        widget.setVisible(seen);
}

} // namespace pavonel
