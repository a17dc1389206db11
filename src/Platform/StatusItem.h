#pragma once

#include "Platform/Service.h"

#include <functional>
#include <vector>

class QImage;

namespace pavonel {

/// One line of a menu.
struct MenuItem {
    enum class Kind { command, label, separator, submenu };

    Kind kind = Kind::command;
    QString title;
    QString keyEquivalent; ///< The letter or sign that chooses the command; empty for none.
    std::function<void()> action;
    std::vector<MenuItem> submenu;
};
using Menu = std::vector<MenuItem>;

/// The program's item in the menu bar (the system tray). Where no menu bar is there now, the item appears as
/// soon as one comes, and comes back when it restarts.
class StatusItem : public Service {
public:
    /// A template image, which only its opacity draws: the menu bar gives it the colour. Given at several
    /// pixel sizes, smallest first. `name` is how the symbol is called; empty images show none.
    virtual void setIcon(const QString &name, const std::vector<QImage> &images) = 0;

    /// Stands behind the icon; empty for none.
    virtual void setTitle(const QString &title) = 0;

    /// Asked each time the menu is about to show.
    virtual void setMenu(std::function<Menu()> makeMenu) = 0;
};

} // namespace pavonel
