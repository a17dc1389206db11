#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Layouts.h"
#include "UI/Refresher.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Visuals.h"

#include <QPainter>

namespace pavonel {

namespace {

class DynamicSection final : public QWidget {
public:
    DynamicSection(const std::vector<Observable *> &watched, std::function<QWidgetList()> content,
                   int spacing)
        : content_(std::move(content)), refresher_(visuals().loop(), watched, [this] { refresh(); }) {
        column(this, {}, spacing);
        build();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        constexpr double inset = FocusRing::room;
        FocusRing::draw(painter, *this, QRectF(rect()).adjusted(inset, inset, -inset, -inset), 8,
                        visuals().palette().accentText);
    }

private:
    void refresh() {
        const QWidget *focused = window()->focusWidget();
        const bool inside = focused && isAncestorOf(focused);
        const bool hadKeyboard = inside || hasFocus();
        const bool ringed = FocusRing::isOn(inside ? *focused : *this);
        const Qt::FocusReason reason = ringed ? Qt::TabFocusReason : Qt::OtherFocusReason;
        const QStringList before = texts();
        if (inside)
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
        for (QWidget *widget : content_()) {
            const bool wantsToHide =
                widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide);
            layout()->addWidget(widget);
            widget->setVisible(!wantsToHide); // now, not in a moment, when nothing would have been there
        }
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

    std::function<QWidgetList()> content_;
    Refresher refresher_;
};

} // namespace

QWidget *dynamicSection(const std::vector<Observable *> &watched, const std::function<QWidgetList()> &content,
                        int spacing) {
    return new DynamicSection(watched, content, spacing);
}

} // namespace pavonel
