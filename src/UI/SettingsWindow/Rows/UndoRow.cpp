#include "UI/SettingsWindow/Rows/UndoRow.h"

#include "Core/Characters.h"
#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/Text.h"

#include <QBoxLayout>

#include <utility>

namespace pavonel {

UndoRow::UndoRow(Visuals &visuals)
    : CardRow(visuals), text_(new Text(visuals, {}, Text::Style::secondary)),
      button_(new Button(QStringLiteral("Undo"))) {
    add(text_);
    static_cast<QBoxLayout *>(layout())->setStretchFactor(text_, 1);
    add(button_);
    hide();
    connect(button_, &Button::clicked, this, [this] {
        hide();
        std::exchange(undo_, {})();
    });
}

void UndoRow::offer(const QString &what, std::function<void()> undo) {
    constexpr qsizetype longest = 60;
    undo_ = std::move(undo);
    const QString name = beginning(what.simplified(), longest);
    text_->setText(name.isEmpty() ? QStringLiteral("Removed") : QStringLiteral("Removed “%1”").arg(name));
    button_->setAccessibleName(QStringLiteral("Undo removing ") + name);
    show();
    announce(*text_);
}

} // namespace pavonel
