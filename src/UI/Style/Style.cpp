#include "UI/Style/Style.h"

#include "Platform/Appearance.h"
#include "UI/Fonts.h"
#include "UI/Style/Drawing.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Traits.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionMenuItem>
#include <QStyleOptionProgressBar>
#include <QStyleOptionSlider>
#include <QStyleOptionSpinBox>
#include <QToolTip>

namespace pavonel {

namespace {

/// Null for an option of another kind.
template <class Option> const Option *as(const QStyleOption *option) {
    return qstyleoption_cast<const Option *>(option);
}

bool isList(const QWidget *widget) {
    return widget->inherits("QComboBoxPrivateContainer");
}

/// Of a list that has a scroll bar.
bool isScrollArrow(const QWidget *widget) {
    return widget && widget->inherits("QComboBoxPrivateScroller");
}

} // namespace

const Visuals &visuals() {
    return static_cast<const Style *>(QApplication::style())->visuals();
}

Style::Style(const DisplayServices &display)
    : QProxyStyle(QStringLiteral("Fusion")), visuals_(display),
      onAppearance_(display.appearance.onChange([this] { takeColours(); })) {
    takeColours();
}

void Style::takeColours() {
    visuals_.refresh();
    const QPalette colours = visuals_.toolkitPalette();
    QApplication::setPalette(colours);
    QToolTip::setPalette(colours);
}

void Style::polish(QWidget *widget) {
    QProxyStyle::polish(widget);
    if (isList(widget))
        widget->setAttribute(Qt::WA_TranslucentBackground, visuals_.canBlend());
    if (widget->focusPolicy() & Qt::TabFocus || qobject_cast<QAbstractButton *>(widget))
        widget->setAttribute(Qt::WA_Hover);
    widget->installEventFilter(&keyboard_); // once, however often
    giveType(*widget);
}

void Style::giveType(QWidget &widget) {
    const ButtonTraits button = ButtonTraits::of(&widget);
    if (button.isNotice())
        widget.setFont(fonts::ui(12, QFont::Medium)); // at every size of the user's text
    else if (button.role == ButtonRole::disc)
        widget.setFont(visuals_.font(11, QFont::DemiBold));
    else if (button.role == ButtonRole::tile)
        widget.setFont(visuals_.font(11));
    else if (qobject_cast<QPushButton *>(&widget))
        widget.setFont(visuals_.font(13, QFont::Medium));
    else if (qobject_cast<QMenu *>(&widget) || qobject_cast<QComboBox *>(&widget) ||
             qobject_cast<QLineEdit *>(&widget) || qobject_cast<QAbstractSpinBox *>(&widget))
        widget.setFont(visuals_.font(13));
}

int Style::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                     QStyleHintReturn *returned) const {
    switch (hint) {
    case SH_ComboBox_Popup:      // over the button, with a tick at what holds
    case SH_ScrollBar_Transient: // above the content
    case SH_Menu_MouseTracking:
        return 1;
    case SH_ComboBox_AllowWheelScrolling:
    case SH_ComboBox_PopupFrameStyle:
        return 0;
    case SH_SpinBox_ClickAutoRepeatThreshold: // milliseconds
        return 400;
    case SH_SpinBox_ClickAutoRepeatRate:
        return 80;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    switch (metric) {
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return drawing::menuPadding;
    case PM_MenuPanelWidth:
        return 0;
    case PM_ScrollBarExtent:
        return drawing::scrollBarWidth;
    case PM_IndicatorWidth:
        return drawing::switchSize(visuals_).width();
    case PM_IndicatorHeight:
        return drawing::switchSize(visuals_).height();
    case PM_MenuScrollerHeight:
        return isScrollArrow(widget) ? 0 : QProxyStyle::pixelMetric(metric, option, widget);
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                              const QWidget *widget) const {
    switch (type) {
    case CT_MenuItem:
        if (const auto *item = as<QStyleOptionMenuItem>(option))
            return drawing::menuLineSize(*item, contents, visuals_);
        break;
    case CT_PushButton:
        if (const auto *button = as<QStyleOptionButton>(option))
            return drawing::pushButtonSize(*button, visuals_, widget);
        break;
    case CT_CheckBox:
        if (const auto *box = as<QStyleOptionButton>(option); box && box->text.isEmpty())
            return drawing::switchSize(visuals_) + QSize(2, 2) * FocusRing::room;
        break;
    case CT_ComboBox:
        return drawing::comboBoxSize(contents, visuals_);
    case CT_SpinBox:
        return drawing::spinBoxSize(contents, visuals_);
    case CT_LineEdit:
        return drawing::fieldSize(contents, visuals_);
    default:
        break;
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

QRect Style::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const {
    switch (element) {
    case SE_LineEditContents:
        return drawing::fieldContents(option->rect);
    case SE_CheckBoxClickRect:
    case SE_RadioButtonClickRect:
        return option->rect;
    default:
        return QProxyStyle::subElementRect(element, option, widget);
    }
}

QRect Style::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                            const QWidget *widget) const {
    if (const auto *bar = as<QStyleOptionSlider>(option); control == CC_ScrollBar && bar) {
        const QRect thumb = drawing::scrollThumb(*bar);
        const bool upright = bar->orientation == Qt::Vertical;
        switch (part) {
        case SC_ScrollBarSlider:
            return thumb;
        case SC_ScrollBarSubPage:
            return upright ? QRect(0, 0, thumb.width(), thumb.top())
                           : QRect(0, 0, thumb.left(), thumb.height());
        case SC_ScrollBarAddPage:
            return upright ? bar->rect.adjusted(0, thumb.bottom() + 1, 0, 0)
                           : bar->rect.adjusted(thumb.right() + 1, 0, 0, 0);
        case SC_ScrollBarGroove:
            return bar->rect;
        default:
            return {};
        }
    }
    if (control == CC_ComboBox && part == SC_ComboBoxListBoxPopup)
        return drawing::comboBoxList(option->rect, visuals_);
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return drawing::comboBoxText(option->rect, visuals_);
    if (control == CC_SpinBox)
        return drawing::spinBoxPart(option->rect, part, visuals_);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                          const QWidget *widget) const {
    const drawing::Context context{*painter, visuals_, widget};
    switch (element) {
    case PE_FrameMenu:
    case PE_FrameFocusRect: // each control draws its ring
        return;
    case PE_PanelMenu:
        return drawing::drawMenu(context, option->rect);
    case PE_PanelLineEdit:
        return drawing::drawField(context, *option);
    case PE_IndicatorCheckBox:
        return drawing::drawSwitch(context, *option);
    default:
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Style::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                        const QWidget *widget) const {
    const drawing::Context context{*painter, visuals_, widget};
    switch (element) {
    case CE_MenuEmptyArea:
        return;
    case CE_MenuItem:
        if (const auto *item = as<QStyleOptionMenuItem>(option))
            return drawing::drawMenuLine(context, *item);
        break;
    case CE_CheckBox:
        if (const auto *box = as<QStyleOptionButton>(option); box && box->text.isEmpty()) {
            QStyleOptionButton body = *box;
            constexpr int room = FocusRing::room;
            body.rect.adjust(room, room, -room, -room);
            return drawing::drawSwitch(context, body);
        }
        break;
    case CE_PushButton:
        if (const auto *button = as<QStyleOptionButton>(option))
            return drawing::drawPushButton(context, *button);
        break;
    case CE_ComboBoxLabel:
        if (const auto *box = as<QStyleOptionComboBox>(option))
            return drawing::drawComboBoxText(context, *box);
        break;
    case CE_ProgressBar:
        if (const auto *bar = as<QStyleOptionProgressBar>(option))
            return drawing::drawProgress(context, *bar);
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                               const QWidget *widget) const {
    const drawing::Context context{*painter, visuals_, widget};
    if (const auto *box = as<QStyleOptionComboBox>(option); control == CC_ComboBox && box)
        return drawing::drawComboBox(context, *box);
    if (const auto *bar = as<QStyleOptionSlider>(option); control == CC_ScrollBar && bar)
        return drawing::drawScrollBar(context, *bar);
    if (const auto *box = as<QStyleOptionSpinBox>(option); control == CC_SpinBox && box)
        return drawing::drawSpinBox(context, *box);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

} // namespace pavonel
