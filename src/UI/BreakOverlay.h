#pragma once

#include "Core/HotKeys.h"
#include "Platform/Screens.h"
#include "Platform/WindowLayers.h"
#include "UI/Backgrounds.h"
#include "UI/BreakOverlayView.h"
#include "UI/Fade.h"

#include <memory>
#include <vector>

namespace pavonel {

/// Covers one screen: takes the keyboard and swallows clicks, and nobody but the manager closes it.
class OverlayWindow final : public QWidget {
public:
    OverlayWindow(const Screen &screen, std::unique_ptr<BreakOverlayView> view);

    const QString &screenName() const { return screenName_; }

    BreakOverlayView &view() const { return *view_; }
    void setView(std::unique_ptr<BreakOverlayView> view);

    /// Shows it above everything.
    void orderFront(WindowLayers &layers, const Screen &screen, double opacity);

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QString screenName_;
    std::unique_ptr<BreakOverlayView> view_;
};

/// Puts the break screen on every screen when a break starts and takes it away when the break ends.
class OverlayManager final : public QObject {
public:
    /// All of these must outlive the manager.
    OverlayManager(Platform &platform, BreakController &controller, Settings &settings,
                   HotKeyManager &hotKeys);
    ~OverlayManager() override;

    /// Nothing while the windows of a break are up.
    void show();
    void hide();

    using Windows = std::vector<std::unique_ptr<OverlayWindow>>;
    /// In the order of the screens at `show`; empty when no overlay is up. Windows that still fade out after
    /// `hide` are not among them.
    const Windows &windows() const { return current_->windows; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The windows of one break, which come and go together.
    struct Set {
        explicit Set(Platform &platform);

        Windows windows;
        Fade fade;
        bool blends = false; ///< Asked when a fade begins: each frame's question would wait for the server.
    };

    void build(const Screen &screen);
    OverlayWindow *primaryWindow() const;
    std::unique_ptr<BreakOverlayView> makeView(BreakOverlayView::Role role);
    void takeKeyboard();
    void bindEscape();
    void cutShort();
    void followScreens();
    void letGo(const Set *gone);

    Platform &platform_;
    BreakController &controller_;
    Settings &settings_;
    HotKeyManager &hotKeys_;
    Backgrounds backgrounds_;
    std::unique_ptr<Set> current_;              ///< Never null; without windows while hidden.
    std::vector<std::unique_ptr<Set>> leaving_; ///< Fading out.
};

} // namespace pavonel
