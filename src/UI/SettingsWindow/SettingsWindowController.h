#pragma once

#include "Core/Observable.h"
#include "UI/SettingsWindow/Page.h"

#include <memory>
#include <optional>

class QRect;
class QSize;
class QWidget;

namespace pavonel {

/// Which page the settings window shows; outlives its opening and closing.
class SettingsSelection final : public Observable {
public:
    Published<Page> page{*this, Page::breaks};
};

/// Owns the one settings window, which is made when it is first shown and hidden when it is closed.
class SettingsWindowController {
public:
    explicit SettingsWindowController(const PageContext &context);
    ~SettingsWindowController();

    /// In front of all other windows and with the keyboard; without a page, on the one of the last time.
    void show(std::optional<Page> page = {});

    SettingsSelection selection;

private:
    PageContext context_;
    std::unique_ptr<QWidget> window_;
};

/// So large within what is free of a screen, as far as it goes, and in its middle, with the title bar on it
/// too.
QRect windowPlace(const QRect &free, const QSize &wanted);

} // namespace pavonel
