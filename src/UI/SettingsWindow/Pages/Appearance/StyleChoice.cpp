#include "UI/SettingsWindow/Pages/Appearance/StyleChoice.h"

#include "Core/BreakVocabulary.h"
#include "Core/ClockText.h"
#include "Core/Settings.h"
#include "UI/BackgroundImage.h"
#include "UI/Backgrounds.h"
#include "UI/BreakLayout.h"
#include "UI/BreakScreenText.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/MessageText.h"
#include "UI/Refresher.h"
#include "UI/Ring.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"
#include "UI/Theme.h"

#include <QButtonGroup>
#include <QGuiApplication>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int room = FocusRing::room;

constexpr QSizeF smallScreen(800, 500); // small for a screen, so that its texts can be read

void paintBreak(QPainter &painter, const QString &message, Seconds duration) {
    constexpr double progress = 0.3;
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

/// The break screen in small, with the background, a message and the length of a micro break as they are set.
class BreakPreview final : public QWidget {
public:
    explicit BreakPreview(Settings &settings)
        : settings_(settings), backgrounds_(settings, visuals().loop()),
          refresher_(visuals().loop(), {&settings}, [this] { forget(); }) {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        setAccessibleRole(*this, QAccessible::Graphic);
        setAccessibleName(QStringLiteral("Preview of the break screen"));
        backgrounds_.onLoaded = [this] { forget(); };
    }

    QSize sizeHint() const override { return {visuals().length(240), visuals().length(150)}; }

protected:
    /// The picture may be another one under the same path.
    void showEvent(QShowEvent *) override {
        backgrounds_.clear();
        forget();
    }
    void paintEvent(QPaintEvent *) override {
        constexpr double radius = 8;
        const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
        if (drawn_.size() != pixels)
            drawn_ = picture(pixels);
        QPainter painter(this);
        drawRounded(painter, rect(), radius, drawn_);
        drawBody(painter, rect(), radius, Qt::transparent, visuals().palette().cardOutline);
    }

private:
    void forget() {
        drawn_ = {};
        update();
    }
    QImage picture(QSize pixels) {
        backgrounds_.prepare({pixels});
        backgrounds_.awaitPictures();
        QImage picture = backgrounds_.image(pixels).copy();
        QPainter painter(&picture);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.scale(picture.width() / smallScreen.width(), picture.height() / smallScreen.height());
        paintBreak(painter, settings_.messages->value(0), settings_.microDuration);
        return picture;
    }

    Settings &settings_;
    Backgrounds backgrounds_;
    QImage drawn_; ///< Null until it is needed.
    Refresher refresher_;
};

/// A theme of the break screen to choose: its gradient in small, above its name.
Button *themeTile(const Background &theme) {
    auto *tile = new Button(theme.name, ButtonRole::tile);
    const QSize swatch(visuals().length(76), visuals().length(48));
    const QSize pixels = (QSizeF(swatch) * qGuiApp->devicePixelRatio()).toSize();
    tile->setIcon(QPixmap::fromImage(gradientImage(theme, pixels)));
    tile->setIconSize(swatch);
    tile->setCheckable(true);
    tile->setAutoExclusive(true); // to assistive technology, too, one of several
    return tile;
}

/// The tiles stand beside the preview, or below it where there is no room; with large text on a narrow page
/// the preview is smaller, and fewer tiles are in a row.
class StyleChoice final : public QWidget {
public:
    explicit StyleChoice(Settings &settings)
        : group_(new QButtonGroup(this)), preview_(new BreakPreview(settings)) {
        preview_->setParent(this);
        for (const Background &theme : Theme::gradients()) {
            Button *tile = themeTile(theme);
            tile->setParent(this);
            group_->addButton(tile, theme.id);
        }
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        connect(group_, &QButtonGroup::idToggled, this, [&settings](int id, bool on) {
            if (on)
                settings.backgroundStyle = id;
        });
        follow(*this, [this, &settings] {
            const QSignalBlocker silence(group_);
            group_->button(Theme::gradient(settings.backgroundStyle).id)->setChecked(true);
        });
    }

    QSize sizeHint() const override { return {width(), heightForWidth(width())}; }
    QSize minimumSizeHint() const override { return {2 * side + tileSize().width(), 0}; }
    int heightForWidth(int width) const override { return arrangementIn(width).height; }

protected:
    void resizeEvent(QResizeEvent *) override {
        const Arrangement places = arrangementIn(width());
        preview_->setGeometry({QPoint(CardRow::margin, room), places.preview});
        const auto tiles = group_->buttons();
        for (int index = 0; index < tiles.size(); ++index) {
            const int column = index % places.columns;
            const int row = index / places.columns;
            const QPoint corner((tileSize() + between).width() * column,
                                (tileSize() + between).height() * row);
            tiles[index]->setGeometry({places.tiles + corner, tileSize()});
        }
    }

private:
    static constexpr int side = CardRow::margin - room; // of the tiles, which have that room around them
    static constexpr QSize between{2, 6};               // tiles

    struct Arrangement {
        QSize preview;
        QPoint tiles; ///< Where they begin.
        int columns;
        int height; ///< Of all.
    };

    Arrangement arrangementIn(int width) const {
        constexpr int mostColumns = 3;
        constexpr int gap = 12;
        const QSize whole = preview_->sizeHint();
        const QSize within(std::min(whole.width(), width - 2 * CardRow::margin), whole.height());
        const QSize preview = whole.scaled(within, Qt::KeepAspectRatio);
        const QSize step = tileSize() + between;
        const int columns = std::clamp((width - 2 * side + between.width()) / step.width(), 1, mostColumns);
        const int rows = (static_cast<int>(group_->buttons().size()) + columns - 1) / columns;
        const QSize tiles = QSize(columns * step.width(), rows * step.height()) - between;
        const int left = width - side - tiles.width();
        const bool beside = left >= CardRow::margin + preview.width() + gap;
        const QPoint corner = beside ? QPoint(left, 0) : QPoint(side, preview.height() + gap);
        const int end = std::max(preview.height() + 2 * room, corner.y() + tiles.height());
        return {preview, corner, columns, end + 14 - room};
    }

    QSize tileSize() const { return group_->buttons().front()->sizeHint(); }

    QButtonGroup *group_;
    BreakPreview *preview_;
};

} // namespace

QWidget *styleChoice(Settings &settings) {
    return new StyleChoice(settings);
}

} // namespace pavonel
