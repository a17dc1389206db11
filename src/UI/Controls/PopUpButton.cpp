#include "UI/Controls/PopUpButton.h"

#include "UI/Controls/Pixels.h"
#include "UI/Controls/PopUpList.h"

#include <QAccessibleWidget>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

constexpr int bodyHeight = 28;
constexpr int padding = 12;
constexpr int widest = 260;
constexpr double radius = 8;

/// From the left edge of the chevrons' place to the padding.
int chevronRoom(const Look &look) {
    return look.length(18);
}

/// Two small ones, one up and one down, about this centre.
void drawChevrons(QPainter &painter, const QPointF &centre, const Look &look) {
    const double unit = look.length(30) / 30.0;
    const double half = 3 * unit;
    const double rise = 3 * unit;
    const double apart = 2.2 * unit;
    painter.setPen(QPen(look.palette().secondaryText, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double way : {-1.0, 1.0}) {
        const QPointF base = centre + QPointF(0, way * apart);
        const QPointF points[] = {base + QPointF(-half, 0), base + QPointF(0, way * rise),
                                  base + QPointF(half, 0)};
        painter.drawPolyline(points, 3);
    }
}

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
            button_.click();
        else
            QAccessibleWidget::doAction(action);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = button_.list() != nullptr;
        return state;
    }

    // Windows that pop up are told of by their owners.
    int childCount() const override { return button_.list() ? 1 : 0; }
    QAccessibleInterface *child(int index) const override {
        return index == 0 && button_.list() ? QAccessible::queryAccessibleInterface(button_.list()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override {
        return button_.list() && child->object() == button_.list() ? 0 : -1;
    }

private:
    PopUpButton &button_;
};

} // namespace

PopUpButton::PopUpButton(Look &look, const QString &name, QStringList choices)
    : ControlButton(look), choices_(std::move(choices)) {
    setAccessibleName(name);
    setFont(look.font(13));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { open(); });
}

void PopUpButton::setChoice(const QString &choice) {
    if (choice == choice_)
        return;
    choice_ = choice;
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
    updateGeometry();
    update();
}

void PopUpButton::choose(const QString &choice) {
    setChoice(choice);
    if (onChoice)
        onChoice(choice);
}

/// A closed list goes a little later.
bool PopUpButton::isOpen() const {
    return list_ && list_->isVisible();
}

QWidget *PopUpButton::list() const {
    return isOpen() ? list_.data() : nullptr;
}

void PopUpButton::open() {
    if (isOpen())
        return;
    list_ = new PopUpList(look_, choices_, choice_, this);
    list_->setAccessibleName(accessibleName());
    list_->onChoice = [this](const QString &choice) { choose(choice); };
    constexpr int room = FocusRing::room;
    list_->openOver(QRect(mapToGlobal(QPoint(room, room)), size() - QSize(2, 2) * room), padding);
}

QSize PopUpButton::sizeHint() const {
    const QFontMetricsF metrics(font());
    double text = metrics.horizontalAdvance(choice_);
    for (const QString &choice : choices_)
        text = std::max(text, metrics.horizontalAdvance(choice));
    const int width = static_cast<int>(std::ceil(text)) + 2 * padding + chevronRoom(look_);
    return QSize(std::min(width, look_.length(widest)), look_.lineHeight(bodyHeight)) +
           QSize(2, 2) * FocusRing::room;
}

QSize PopUpButton::minimumSizeHint() const {
    return {80, sizeHint().height()};
}

void PopUpButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.45);
    ButtonColours colours = look_.palette().plainButton;
    if (isOpen())
        colours.fill = colours.hovered = colours.pressed;
    constexpr double room = FocusRing::room;
    const QRectF body = QRectF(rect()).adjusted(room, room, -room, -room);
    drawBody(painter, body, radius, colours, *this);
    const QRectF place = body.adjusted(padding, 0, 6 - padding - chevronRoom(look_), 0);
    painter.setPen(colours.ink);
    const QString text =
        QFontMetricsF(font(), this).elidedText(choice_.simplified(), Qt::ElideRight, place.width());
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft, text);
    drawChevrons(painter, {body.right() - padding - 1, body.center().y()}, look_);
    ring_.draw(painter, body, radius, look_.palette().accentText);
}

void PopUpButton::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Down:
    case Qt::Key_Up:
        return click();
    default:
        ControlButton::keyPressEvent(event);
    }
}

QAccessibleInterface *PopUpButton::makeAccessible() {
    return new PopUpAccessible(this);
}

} // namespace pavonel
