#include "UI/SettingsWindow/WeekdayToggle.h"

#include "UI/Controls/ChoiceAccessible.h"
#include "UI/Controls/Pixels.h"

#include <QLocale>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int diameter = 26;

/// The toolkit counts from Monday, 1, to Sunday, 7.
int ofToolkit(int day) {
    return day % 7 + 1;
}
int toToolkit(int weekday) {
    return weekday == 1 ? 7 : weekday - 1;
}

} // namespace

WeekdayToggle::WeekdayToggle(Look &look, int weekday) : ControlButton(look), weekday_(weekday) {
    setCheckable(true);
    setText(nameOf(weekday).left(1));
    setAccessibleName(nameOf(weekday));
    setToolTip(nameOf(weekday));
    setFont(look.font(11, QFont::DemiBold));
}

std::vector<int> WeekdayToggle::inOrder() {
    std::vector<int> days;
    int day = QLocale().firstDayOfWeek();
    for (int count = 0; count < 7; ++count, day = day % 7 + 1)
        days.push_back(ofToolkit(day));
    return days;
}

QString WeekdayToggle::nameOf(int weekday) {
    return QLocale(QLocale::English, QLocale::UnitedStates).dayName(toToolkit(weekday));
}

QSize WeekdayToggle::sizeHint() const {
    const int side = look_.length(diameter) + 2 * FocusRing::room;
    return {side, side};
}

QAccessibleInterface *WeekdayToggle::makeAccessible() {
    return new ChoiceAccessible(*this, QAccessible::CheckBox);
}

void WeekdayToggle::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.45);
    constexpr double room = FocusRing::room;
    const QRectF body = QRectF(rect()).adjusted(room, room, -room, -room);
    const ButtonColours &colours =
        isChecked() ? look_.palette().prominentButton : look_.palette().plainButton;
    drawBody(painter, body, body.width() / 2, colours, *this);
    painter.setPen(isChecked() ? colours.ink : look_.palette().secondaryText);
    painter.drawText(rect(), Qt::AlignCenter, text());
    ring_.draw(painter, body, body.width() / 2, look_.palette().accentText);
}

} // namespace pavonel
