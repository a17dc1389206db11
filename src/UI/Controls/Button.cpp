#include "UI/Controls/Button.h"

namespace pavonel {

Button::Button(const QString &text, ButtonRole role, const QString &symbol) : QPushButton(text) {
    const ButtonTraits traits{role, symbol};
    traits.giveTo(*this);
    setFocusPolicy(traits.isNotice() ? Qt::NoFocus : Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (traits.isNotice())
        resize(sizeHint());
}

Button *Button::ofSymbol(const QString &symbol, const QString &name, ButtonRole role) {
    auto *button = new Button({}, role, symbol);
    button->setAccessibleName(name);
    return button;
}

} // namespace pavonel
