#include "UI/Controls/PopUpButton.h"

#include "UI/Style/Keyboard.h"
#include "UI/Style/Visuals.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QStringListModel>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int tallest = 440;
constexpr int narrowest = 80;

class PopUpAccessible final : public QAccessibleWidget {
public:
    explicit PopUpAccessible(PopUpButton *button)
        : QAccessibleWidget(button, QAccessible::ComboBox), button_(*button) {}

    QString text(QAccessible::Text type) const override {
        // The bridge to AT-SPI does not pass a value's text on; a description is read out too.
        const bool value = type == QAccessible::Value || type == QAccessible::Description;
        return value ? button_.choice() : QAccessibleWidget::text(type);
    }
    QStringList actionNames() const override { return {showMenuAction(), pressAction(), setFocusAction()}; }
    void doAction(const QString &action) override {
        if (action == showMenuAction() || action == pressAction())
            button_.showPopup();
        else
            QAccessibleWidget::doAction(action);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = isOpen();
        return state;
    }

    int childCount() const override { return isOpen() ? 1 : 0; }
    QAccessibleInterface *child(int index) const override {
        return index == 0 && isOpen() ? QAccessible::queryAccessibleInterface(button_.view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override {
        return isOpen() && child->object() == button_.view() ? 0 : -1;
    }

private:
    bool isOpen() const { return button_.isListShown(); }

    PopUpButton &button_;
};

QAccessibleInterface *makeFor(const QString &, QObject *object) {
    auto *button = dynamic_cast<PopUpButton *>(object);
    return button ? new PopUpAccessible(button) : nullptr;
}

} // namespace

PopUpButton::PopUpButton(const QString &name, const QStringList &choices) {
    QAccessible::installFactory(makeFor); // once, however often
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    setMinimumWidth(narrowest);
    setModel(new QStringListModel(choices, this));
    setCurrentIndex(-1);
}

QString PopUpButton::choice() const {
    return currentIndex() < 0 ? placeholderText() : currentText();
}

void PopUpButton::setChoice(const QString &choice) {
    if (choice == this->choice())
        return;
    const int index = findText(choice);
    setPlaceholderText(index < 0 ? choice : QString());
    setCurrentIndex(index);
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
    updateGeometry();
}

void PopUpButton::showPopup() {
    if (!listIsMade_) {
        listIsMade_ = true;
        followAssistiveTechnology();
        view()->setAccessibleName(accessibleName());
        view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        view()->window()->setMaximumHeight(visuals().length(tallest));
        view()->window()->installEventFilter(this);
    }
    QComboBox::showPopup();
}

bool PopUpButton::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Show)
        placeList(*view()->window());
    return QComboBox::eventFilter(watched, event);
}

/// With the choice over the button. Qt (6.8) reckons as if the list were not scrolled.
void PopUpButton::placeList(QWidget &list) {
    if (currentIndex() < 0)
        return;
    const QModelIndex choice = model()->index(currentIndex(), 0);
    view()->scrollTo(choice, QAbstractItemView::PositionAtCenter);
    const int middle = view()->viewport()->mapTo(&list, view()->visualRect(choice).center()).y();
    const QRect free = screen()->availableGeometry();
    const int wanted = mapToGlobal(rect().center()).y() - middle;
    list.move(list.x(), std::max(free.top(), std::min(wanted, free.bottom() + 1 - list.height())));
}

/// Which chooses an entry by selecting it, and leaves the one that has the keyboard as it is.
void PopUpButton::followAssistiveTechnology() {
    connect(view()->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        const QModelIndexList selected = view()->selectionModel()->selectedIndexes();
        if (!isListShown() || selected.isEmpty() || selected.front() == view()->currentIndex())
            return;
        setCurrentIndex(selected.front().row());
        hidePopup();
        Q_EMIT activated(currentIndex());
        Q_EMIT textActivated(currentText());
    });
}

bool PopUpButton::isListShown() const {
    return listIsMade_ && view()->isVisible();
}

void PopUpButton::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    if (isReturn(*event) || key == Qt::Key_Down || key == Qt::Key_Up)
        return showPopup();
    if (event->text().trimmed().isEmpty() && key != Qt::Key_Space)
        return event->ignore();
    QComboBox::keyPressEvent(event);
}

void PopUpButton::wheelEvent(QWheelEvent *event) {
    event->ignore();
}

} // namespace pavonel
