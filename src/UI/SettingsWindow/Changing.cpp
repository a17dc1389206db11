#include "UI/SettingsWindow/Changing.h"

#include "UI/Refresher.h"

#include <QVBoxLayout>
#include <QWidget>

namespace pavonel {

namespace {

class ChangingWidget final : public QWidget {
public:
    ChangingWidget(Look &look, const Changing &part)
        : look_(look), part_(part), refresher_(part.loop, part.watched, [this] { build(); }) {
        auto *lines = new QVBoxLayout(this);
        lines->setContentsMargins({});
        lines->setSpacing(part.spacing);
        build();
    }

private:
    void build() {
        const QWidget *focused = focusedChild();
        while (QLayoutItem *item = layout()->takeAt(0)) {
            delete item->widget();
            delete item;
        }
        for (const Piece &piece : part_.content()) {
            QWidget *widget = piece.make(look_);
            const bool wantsToHide =
                widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide);
            layout()->addWidget(widget);
            widget->setVisible(!wantsToHide); // now, not in a moment, when nothing would have been there
        }
        if (focused)
            focusFirst();
    }

    const QWidget *focusedChild() const {
        const QWidget *focused = window()->focusWidget();
        return focused && isAncestorOf(focused) ? focused : nullptr;
    }

    void focusFirst() {
        for (QWidget *child : findChildren<QWidget *>()) {
            if (child->focusPolicy() & Qt::TabFocus)
                return child->setFocus(Qt::OtherFocusReason);
        }
    }

    Look &look_;
    Changing part_;
    Refresher refresher_;
};

} // namespace

QWidget *Changing::make(Look &look) const {
    return new ChangingWidget(look, *this);
}

} // namespace pavonel
