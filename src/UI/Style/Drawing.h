#pragma once

#include <QStyle>

class QPainter;
class QRect;
class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionMenuItem;
class QStyleOptionProgressBar;
class QStyleOptionSlider;
class QStyleOptionSpinBox;
class QStyleOption;
class QWidget;

/// The looks of each of Qt's controls: how large it is and how it is drawn. A control keeps `FocusRing::room`
/// free around its body, in which its ring is drawn.
namespace pavonel {

class Visuals;

namespace drawing {

struct Context {
    QPainter &painter;
    const Visuals &visuals;
    const QWidget *widget;
};

/// For as long as it lives shapes are smooth, and a control that cannot be used is pale.
class ControlPainting {
public:
    ControlPainting(QPainter &painter, const QStyleOption &control);
    ControlPainting(const ControlPainting &) = delete;
    ControlPainting &operator=(const ControlPainting &) = delete;
    ~ControlPainting();

private:
    QPainter &painter_;
};

// Buttons.cpp
QSize pushButtonSize(const QStyleOptionButton &button, const Visuals &visuals, const QWidget *widget);
void drawPushButton(const Context &context, const QStyleOptionButton &button);

// Tile.cpp
QSize tileSize(const QStyleOptionButton &tile);
void drawTile(const Context &context, const QStyleOptionButton &tile);

// Switch.cpp
QSize switchSize(const Visuals &visuals);
void drawSwitch(const Context &context, const QStyleOption &option);

// Fields.cpp
QSize fieldSize(const QSize &contents, const Visuals &visuals);
QRect fieldContents(const QRect &field);
void drawField(const Context &context, const QStyleOption &option);
void drawProgress(const Context &context, const QStyleOptionProgressBar &bar);

// ComboBox.cpp
QSize comboBoxSize(const QSize &contents, const Visuals &visuals);
QRect comboBoxList(const QRect &box, const Visuals &visuals);
QRect comboBoxText(const QRect &box, const Visuals &visuals);
void drawComboBox(const Context &context, const QStyleOptionComboBox &box);
void drawComboBoxText(const Context &context, const QStyleOptionComboBox &box);

// SpinBox.cpp
QSize spinBoxSize(const QSize &contents, const Visuals &visuals);
QRect spinBoxPart(const QRect &box, QStyle::SubControl part, const Visuals &visuals);
void drawSpinBox(const Context &context, const QStyleOptionSpinBox &box);

// Menu.cpp
constexpr int menuPadding = 5;    ///< Between the menu's edge and its lines.
constexpr int menuTextInset = 28; ///< Of the texts of lines that can be ticked, from the line's left end.
constexpr int choiceHeight = 28;  ///< Of such lines at the ordinary text size.
QSize menuLineSize(const QStyleOptionMenuItem &item, const QSize &contents, const Visuals &visuals);
void drawMenu(const Context &context, const QRect &rect);
void drawMenuLine(const Context &context, const QStyleOptionMenuItem &item);

// ScrollBar.cpp
constexpr int scrollBarWidth = 12; ///< Of the strip that the thumb runs in.
QRect scrollThumb(const QStyleOptionSlider &bar);
void drawScrollBar(const Context &context, const QStyleOptionSlider &bar);

} // namespace drawing

} // namespace pavonel
