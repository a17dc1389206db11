#pragma once

#include "Core/BreakController.h"
#include "UI/Controls/Button.h"
#include "UI/Panels/FloatingPanel.h"
#include "UI/Panels/Hint.h"
#include "UI/Refresher.h"

namespace pavonel {

/// What stands on the heads-up notice. The time and the buttons are live.
class HeadsUpView final : public QWidget {
public:
    HeadsUpView(const DisplayServices &display, FloatingPanel &panel, BreakController &controller,
                Settings &settings, BreakKind kind, const QString &title, std::function<void()> onClose);

    static constexpr int width = 340;
    static int height(const Settings &settings);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Button *addButton(const QString &text, ButtonRole role, std::function<void()> action);
    void addButtons();
    void addCloseButton(const DisplayServices &display);
    void refresh();
    void layOutButtons();
    void paintLines(QPainter &painter, double right) const;

    BreakController &controller_;
    Settings &settings_;
    const Palette &palette_;
    BreakKind kind_;
    QString title_;
    std::function<void()> onClose_;
    QString time_;
    Button *close_ = nullptr;
    Button *start_ = nullptr;
    Button *oneMinute_ = nullptr;
    Button *fiveMinutes_ = nullptr;
    Button *skip_ = nullptr;
    std::unique_ptr<Hint> closeHint_;
    std::unique_ptr<Refresher> refresher_;
};

} // namespace pavonel
