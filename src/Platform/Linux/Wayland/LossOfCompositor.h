#pragma once

#include "Platform/Termination.h"

#include <QSemaphore>

#include <memory>

struct wl_display;

namespace pavonel {

/// The compositor may go from under us. The first of Qt's threads (6.4 to 6.8) to notice then writes a
/// warning and ends the process at once, without its exit handlers. It is held up in that warning until
/// everything is saved.
class LossOfCompositor final : public Termination {
public:
    /// All else that ends us is for `others` to tell; where Qt is not on Wayland, everything is.
    static std::unique_ptr<Termination> watch(std::unique_ptr<Termination> others);
    ~LossOfCompositor() override;

    QString limitation() const override { return others_->limitation(); }
    void onSave(std::function<void()> save) override;
    void onEnd(std::function<void()> end) override { others_->onEnd(std::move(end)); }

private:
    LossOfCompositor(wl_display *connectionOfQt, std::unique_ptr<Termination> others);
    static void listen(QtMsgType type, const QMessageLogContext &context, const QString &text);
    bool isLost() const;
    void save();
    void awaitSave();

    wl_display *connection_;
    std::unique_ptr<Termination> others_;
    std::function<void()> save_;
    QSemaphore saved_;
};

} // namespace pavonel
