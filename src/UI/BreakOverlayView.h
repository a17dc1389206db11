#pragma once

#include "Core/BreakController.h"
#include "Platform/DisplayServices.h"
#include "UI/BreakLayout.h"
#include "UI/MessageText.h"
#include "UI/Refresher.h"
#include "UI/RingGlide.h"

#include <QWidget>

#include <optional>

namespace pavonel {

class Backgrounds;
class Inset;
class SkipButton;
class WindowLayers;

/// What the break screen of one window shows: the background, and on the primary screen over it the title,
/// the ring with the time, the message and, where skipping is permitted, the button. It follows the
/// controller and the settings until it is frozen.
class BreakOverlayView final : public QWidget {
public:
    enum class Role { primary, secondary };

    BreakOverlayView(BreakController &controller, Settings &settings, const DisplayServices &display,
                     Backgrounds &backgrounds, Role role, QWidget *parent = nullptr);
    ~BreakOverlayView() override;

    bool isPrimary() const { return role_ == Role::primary; }

    /// The share of the break that is over, 0 to 1; 0 for a break without length.
    double progress() const;

    /// To be called once the window is on the screen and opaque: what moves gets a window of its own where
    /// that is cheaper.
    void settle();

    /// Takes over the last state and follows no further; for a break that has ended.
    void freeze();

    const BreakLayout &layoutOfScreen() const { return layout_; }
    const QString &timeText() const { return shown_.time; }
    /// Null on a secondary screen.
    SkipButton *skipButton() const { return skip_; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// What of the controller's and the settings' state can be seen.
    struct Content {
        /// The part that seldom changes; then the whole screen is drawn.
        struct Still {
            QString title;
            QString message;
            bool skipPermitted = false;
            int backgroundStyle = 0;
            QString backgroundPath;

            bool operator==(const Still &) const = default;
        } still;
        QString time;
        double progress = 0;
    };

    Content content() const;
    void refresh();
    void arrange();
    void breakMessage(double scale, double room);
    void updateTime();
    void updateArc();
    bool paintFrame(const QRectF &changed);
    void paint(QPainter &painter, const QRect &due);
    void paintAnew(const QRect &due);
    QRect aroundRing() const;
    void paintBackground(QPainter &painter);

    BreakController &controller_;
    Settings &settings_;
    MainLoop &loop_;
    WindowLayers &layers_;
    Backgrounds &backgrounds_;
    Role role_;
    Content shown_;
    BreakLayout layout_;
    std::optional<MessageText> message_;
    SkipButton *skip_ = nullptr; ///< A child; hidden while skipping is not permitted.
    RingGlide glide_;
    std::unique_ptr<Inset> inset_; ///< Shows ring and time in our stead.
    QRect insetPlace_;             ///< In our points.
    double drawnProgress_ = 0;     ///< Where the arc ends on the screen.
    std::optional<Refresher> refresher_;
};

} // namespace pavonel
