#pragma once

#include "UI/Controls/Visuals.h"
#include "UI/SettingsWindow/Page.h"

#include <QWidget>

#include <functional>

namespace pavonel {

class ScrollArea;
class SidebarItem;

/// The list of the pages, and below it Pavonel's name. One stop for the Tab key; arrow keys go from page
/// to page. Not a `QListView`: its entries can be pressed by assistive technology.
class Sidebar : public QWidget {
public:
    explicit Sidebar(Visuals &visuals);

    /// Told of the page that the user goes to.
    std::function<void(Page)> onSelect;

    void select(Page page);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void goTo(std::size_t place);

    Visuals &visuals_;
    ScrollArea *area_;
    std::vector<SidebarItem *> items_;
    std::size_t selected_ = 0;
};

} // namespace pavonel
