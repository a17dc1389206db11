#pragma once

#include "UI/SettingsWindow/Page.h"

#include <QWidget>

#include <functional>

class QButtonGroup;

namespace pavonel {

class ScrollArea;

/// The list of the pages, and below it Pavonel's name. One stop for the Tab key; arrow keys go from page
/// to page. Radio buttons, since assistive technology can give the keyboard to each, unlike to the entries of
/// a `QListView`.
class Sidebar : public QWidget {
public:
    Sidebar();

    /// Told of the page that the user goes to.
    std::function<void(Page)> onSelect;

    void select(Page page);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    ScrollArea *area_;
    QButtonGroup *items_; ///< Each under the number of its page.
};

} // namespace pavonel
