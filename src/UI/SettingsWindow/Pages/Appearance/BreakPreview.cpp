#include "UI/SettingsWindow/Pages/Appearance/BreakPreview.h"

#include "Core/BreakVocabulary.h"
#include "Core/ClockText.h"
#include "UI/BreakLayout.h"
#include "UI/BreakScreenText.h"
#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Pixels.h"
#include "UI/MessageText.h"
#include "UI/Ring.h"

#include <QPainter>

namespace pavonel {

namespace {

constexpr QSizeF smallScreen(800, 500); // small for a screen, so that its texts can be read
constexpr double progress = 0.3;
constexpr double radius = 8;

void paintBreak(QPainter &painter, const QString &message, Seconds duration) {
    BreakLayout::Sizes sizes;
    sizes.titleHeight = breakScreen::titleHeight();
    const MessageText text(message, breakScreen::messageFont(), BreakLayout::widestMessage,
                           BreakLayout::roomForMessage(smallScreen, sizes));
    sizes.messageHeight = text.height();
    const BreakLayout layout = BreakLayout::of(smallScreen, sizes);
    ring::paint(painter, layout.ring, progress, layout.ring.adjusted(-1, -1, 1, 1));
    breakScreen::paintTitle(painter, layout.title, defaultTitle(BreakKind::micro));
    breakScreen::paintTime(painter, layout.ring, clockText(duration * (1 - progress)));
    breakScreen::paintMessage(painter, layout.message, text);
}

} // namespace

BreakPreview::BreakPreview(Visuals &visuals, Settings &settings)
    : visuals_(visuals), settings_(settings), backgrounds_(settings, visuals.loop()),
      refresher_(visuals.loop(), {&settings}, [this] { forget(); }) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(QStringLiteral("Preview of the break screen"));
    backgrounds_.onLoaded = [this] { forget(); };
}

/// The picture may be another one under the same path.
void BreakPreview::showEvent(QShowEvent *) {
    backgrounds_.clear();
    forget();
}

void BreakPreview::forget() {
    drawn_ = {};
    update();
}

QImage BreakPreview::picture(QSize pixels) {
    backgrounds_.prepare({pixels});
    backgrounds_.awaitPictures();
    QImage picture = backgrounds_.image(pixels).copy();
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(picture.width() / smallScreen.width(), picture.height() / smallScreen.height());
    paintBreak(painter, settings_.messages->value(0), settings_.microDuration);
    return picture;
}

void BreakPreview::paintEvent(QPaintEvent *) {
    const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
    if (drawn_.size() != pixels)
        drawn_ = picture(pixels);
    QPainter painter(this);
    drawRounded(painter, rect(), radius, drawn_);
    drawBody(painter, rect(), radius, Qt::transparent, visuals_.palette().cardOutline);
}

} // namespace pavonel
