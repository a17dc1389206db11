#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Look.h"

#include <QAbstractButton>

namespace pavonel {

/// A page's entry in the sidebar.
class SidebarItem : public QAbstractButton, public AccessibleControl {
public:
    SidebarItem(Look &look, const QString &title, const QString &symbol);

    /// Only the selected one is reached by the Tab key.
    void setSelected(bool selected);
    bool isSelected() const { return selected_; }

    QSize sizeHint() const override;
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look &look_;
    QString symbol_;
    bool selected_ = false;
};

} // namespace pavonel
