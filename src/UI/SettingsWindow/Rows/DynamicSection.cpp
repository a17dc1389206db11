#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Layouts.h"
#include "UI/Refresher.h"
#include "UI/SettingsWindow/Rows/Rows.h"

#include <QFocusEvent>
#include <QPainter>

namespace pavonel {

namespace {

class DynamicSectionWidget final : public QWidget {
public:
    DynamicSectionWidget(Visuals &visuals, const DynamicSection &part)
        : visuals_(visuals), part_(part), refresher_(visuals.loop(), part.watched, [this] { refresh(); }) {
        column(this, {}, part.spacing);
        build();
    }

protected:
    void focusInEvent(QFocusEvent *event) override {
        FocusRing::focusIn(*this, event->reason());
        update();
    }
    void focusOutEvent(QFocusEvent *event) override {
        FocusRing::focusOut(*this, event->reason());
        update();
    }
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        constexpr double inset = FocusRing::room;
        FocusRing::draw(painter, *this, QRectF(rect()).adjusted(inset, inset, -inset, -inset), 8,
                        visuals_.palette().accentText);
    }

private:
    void refresh() {
        const QWidget *focused = focusedChild();
        const bool hadKeyboard = focused || hasFocus();
        const bool ringed = FocusRing::isOn(focused ? *focused : *this);
        const Qt::FocusReason reason = ringed ? Qt::TabFocusReason : Qt::OtherFocusReason;
        const QStringList before = texts();
        if (focused)
            setFocus(reason); // it would leave with what has it
        build();
        say(before);
        if (hadKeyboard)
            focusFirst(reason);
    }

    void say(const QStringList &before) {
        QStringList told = texts();
        told.removeIf([&](const QString &text) { return before.contains(text); });
        if (told.isEmpty())
            return;
        setAccessibleName(told.join(u' '));
        announce(*this);
    }

    /// What stands in it to be read.
    QStringList texts() const {
        QStringList found;
        for (QWidget *child : findChildren<QWidget *>()) {
            const QAccessibleInterface *one = QAccessible::queryAccessibleInterface(child);
            if (one && one->role() == QAccessible::StaticText && !child->isHidden())
                found.append(one->text(QAccessible::Name));
        }
        return found;
    }

    void build() {
        while (QLayoutItem *item = layout()->takeAt(0)) {
            delete item->widget();
            delete item;
        }
        for (const Element &element : part_.content()) {
            QWidget *widget = element.make(visuals_);
            const bool wantsToHide =
                widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide);
            layout()->addWidget(widget);
            widget->setVisible(!wantsToHide); // now, not in a moment, when nothing would have been there
        }
    }

    const QWidget *focusedChild() const {
        const QWidget *focused = window()->focusWidget();
        return focused && isAncestorOf(focused) ? focused : nullptr;
    }

    /// While there is nothing to act on, it has the keyboard itself. What has it tells what is new: that is
    /// read out also where announcements are not.
    void focusFirst(Qt::FocusReason reason) {
        for (QWidget *child : findChildren<QWidget *>()) {
            if (!(child->focusPolicy() & Qt::TabFocus))
                continue;
            child->setAccessibleDescription(accessibleName());
            return child->setFocus(reason);
        }
    }

    Visuals &visuals_;
    DynamicSection part_;
    Refresher refresher_;
};

} // namespace

QWidget *DynamicSection::make(Visuals &visuals) const {
    return new DynamicSectionWidget(visuals, *this);
}

} // namespace pavonel
