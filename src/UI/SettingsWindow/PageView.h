#pragma once

#include "UI/Controls/Visuals.h"
#include "UI/SettingsWindow/Page.h"

#include <QAbstractSlider>
#include <QWidget>

class QScrollArea;

namespace pavonel {

/// One page: its title, its subtitle, and its cards in a column that scrolls.
class PageView : public QWidget {
public:
    PageView(Visuals &visuals, const PageEntry &entry, PageContext &context);

    /// Lets every row show what its setting is now.
    void refresh();

    void scroll(QAbstractSlider::SliderAction action);

private:
    QScrollArea *area_;
};

} // namespace pavonel
