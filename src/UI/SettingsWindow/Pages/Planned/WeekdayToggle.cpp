#include "UI/SettingsWindow/Pages/Planned/WeekdayToggle.h"

#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Pixels.h"

#include <QLocale>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyleOptionButton>

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

WeekdayToggle::WeekdayToggle(Visuals &visuals, int weekday) : visuals_(visuals), weekday_(weekday) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setText(nameOf(weekday).left(1));
    setAccessibleName(nameOf(weekday));
    setToolTip(nameOf(weekday));
    setFont(visuals.font(11, QFont::DemiBold));
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
    const int side = visuals_.length(diameter) + 2 * FocusRing::room;
    return {side, side};
}

void WeekdayToggle::setOn(bool on) {
    const QSignalBlocker silence(this);
    setChecked(on);
}

void WeekdayToggle::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    constexpr double room = FocusRing::room;
    const QRectF body = QRectF(rect()).adjusted(room, room, -room, -room);
    const ButtonColours &colours =
        isChecked() ? visuals_.palette().prominentButton : visuals_.palette().plainButton;
    QStyleOptionButton option;
    initStyleOption(&option);
    option.state.setFlag(QStyle::State_On, false); // said by the colours
    drawBody(painter, body, body.width() / 2, colours, option.state);
    painter.setPen(isChecked() ? colours.ink : visuals_.palette().secondaryText);
    painter.drawText(rect(), Qt::AlignCenter, text());
    FocusRing::draw(painter, *this, body, body.width() / 2, visuals_.palette().accentText);
}

} // namespace pavonel
