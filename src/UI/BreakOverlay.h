#pragma once

#include "Core/HotKeys.h"
#include "Platform/DisplayServices.h"
#include "Platform/Screens.h"
#include "Platform/WindowLayers.h"
#include "UI/Backgrounds.h"
#include "UI/BreakOverlayView.h"
#include "UI/Fade.h"
#include "UI/ScreenChanges.h"
#include "UI/WindowOpacity.h"

#include <memory>
#include <vector>

namespace pavonel {

/// Covers one screen: takes the keyboard and swallows clicks, and nobody but the manager closes it.
class OverlayWindow final : public QWidget {
public:
    OverlayWindow(const Screen &screen, Fading fading, std::unique_ptr<BreakOverlayView> view);

    const QString &screenName() const { return screenName_; }

    BreakOverlayView &view() const { return *view_; }
    void setView(std::unique_ptr<BreakOverlayView> view);

    /// Shows it above everything.
    void orderFront(WindowLayers &layers, const Screen &screen);

    void setOpacity(double opacity) { opacity_.set(opacity); }

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QString screenName_;
    std::unique_ptr<BreakOverlayView> view_;
    WindowOpacity opacity_;
};

/// Puts the break screen on every screen when a break starts and takes it away when the break ends.
class OverlayManager final : public QObject {
public:
    /// All of these must outlive the manager.
    OverlayManager(const DisplayServices &display, BreakController &controller, Settings &settings,
                   HotKeyManager &hotKeys);
    ~OverlayManager() override;

    /// A break is near: prepares what takes its time.
    void expect();
    /// The break does not come for now, or at once.
    void standDown();

    /// Nothing while the windows of a break are up.
    void show();
    void hide();

    using Windows = std::vector<std::unique_ptr<OverlayWindow>>;
    /// In the order of the screens at `show`, those of screens that went and came back last; empty when no
    /// overlay is up. Windows that still fade out after `hide` are not among them.
    const Windows &windows() const { return current_->windows; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The windows of one break, which come and go together.
    struct Set {
        explicit Set(const DisplayServices &display);

        void follow(const std::vector<Screen> &screens);
        bool covers(const Screen &screen) const;
        void settle();

        Windows windows;
        QStringList screens;    ///< The names of all that it began with; empty while hidden.
        bool showsText = false; ///< On one of its windows, whichever screens go.
        Fade fade;
    };

    void build(const Screen &screen, BreakOverlayView::Role role);
    void giveBackIfIdle();
    OverlayWindow *primaryWindow() const;
    std::unique_ptr<BreakOverlayView> makeView(BreakOverlayView::Role role);
    void takeKeyboard();
    void bindEscape();
    void cutShort();
    void followScreens();
    void keepText();
    void letGo(const Set *gone);

    DisplayServices display_;
    BreakController &controller_;
    Settings &settings_;
    HotKeyManager &hotKeys_;
    Backgrounds backgrounds_;
    std::unique_ptr<Set> current_;              ///< Never null.
    std::vector<std::unique_ptr<Set>> leaving_; ///< Fading out.
    ScreenChanges screenChanges_;
    Lifetime lifetime_;
};

} // namespace pavonel
