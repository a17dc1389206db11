#include "Core/BreakVocabulary.h"
#include "Core/ClockText.h"
#include "Core/Settings.h"
#include "UI/BackgroundImage.h"
#include "UI/Backgrounds.h"
#include "UI/BreakLayout.h"
#include "UI/BreakScreenText.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/CardRow.h"
#include "UI/MessageText.h"
#include "UI/Refresher.h"
#include "UI/Ring.h"
#include "UI/SettingsWindow/Pages/Appearance/BreakScreenRows.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"
#include "UI/Theme.h"

#include <QButtonGroup>
#include <QFontMetrics>
#include <QPainter>
#include <QRadioButton>
#include <QSignalBlocker>

#include <algorithm>
#include <vector>

namespace pavonel {

namespace {

constexpr int room = FocusRing::room; // which the tiles have around them
constexpr int gap = 12;
constexpr int bottom = 14 - room;

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

/// A theme of the break screen to choose, one of a group: its gradient in small, above its name.
class StyleTile final : public QRadioButton {
public:
    explicit StyleTile(const Background &theme) : theme_(theme) {
        setFocusPolicy(Qt::TabFocus);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        setText(theme.name);
        setAccessibleName(theme.name);
        setFont(visuals().font(11));
    }

    QSize sizeHint() const override {
        return swatchSize() + QSize(2 * room, room + aboveName + QFontMetrics(font()).height());
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Palette &palette = visuals().palette();
        const QRectF swatch(QPointF(room, room), swatchSize());
        const QSize pixels = (swatch.size() * devicePixelRatioF()).toSize();
        if (gradient_.size() != pixels)
            gradient_ = gradientImage(theme_, pixels);
        drawRounded(painter, swatch, tileRadius, gradient_);
        drawBody(painter, swatch, tileRadius, Qt::transparent, palette.cardOutline);
        if (isChecked() || FocusRing::isOn(*this)) {
            constexpr double width = 2;
            constexpr double out = 1 + width / 2;
            painter.setPen(QPen(isChecked() ? palette.accent : palette.accentText, width));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(swatch.adjusted(-out, -out, out, out), tileRadius + out,
                                    tileRadius + out);
        }
        const double top = swatch.bottom() + aboveName;
        paintName(painter, {0, top, static_cast<double>(QWidget::width()), height() - top});
    }

private:
    static constexpr double tileRadius = 7;
    static constexpr int aboveName = 4;

    QSize swatchSize() const { return {visuals().length(76), visuals().length(48)}; }

    /// The chosen tile has a ring already: what tells that it has the keyboard is its name.
    void paintName(QPainter &painter, const QRectF &line) const {
        const Palette &palette = visuals().palette();
        painter.setPen(isChecked() || underMouse() ? palette.text : palette.secondaryText);
        if (FocusRing::isOn(*this)) {
            constexpr double around = 6;
            const double half = QFontMetricsF(font()).horizontalAdvance(text()) / 2 + around;
            drawBody(painter, {line.center().x() - half, line.top(), 2 * half, line.height()}, 4,
                     palette.accent, Qt::transparent);
            painter.setPen(palette.onAccent);
        }
        painter.drawText(line, Qt::AlignHCenter | Qt::AlignTop, text());
    }

    const Background &theme_;
    QImage gradient_;
};

/// The tiles stand beside the preview, or below it where there is no room; with large text on a narrow page
/// the preview is smaller, and fewer tiles are in a row.
class StyleChoice final : public QWidget {
public:
    explicit StyleChoice(Settings &settings)
        : settings_(settings), group_(new QButtonGroup(this)), preview_(new BreakPreview(settings)),
          tiles_(tiles()) {
        preview_->setParent(this);
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        connect(group_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
            if (on)
                settings_.backgroundStyle = id;
        });
        follow(*this, [this] {
            const QSignalBlocker silence(group_);
            group_->button(Theme::gradient(settings_.backgroundStyle).id)->setChecked(true);
        });
    }

    QSize sizeHint() const override {
        const int width = sides + preview_->sizeHint().width() + gap + tilesSize(mostColumns).width();
        return {width, heightForWidth(width)};
    }
    QSize minimumSizeHint() const override { return {sides + tilesSize(1).width(), 0}; }
    int heightForWidth(int width) const override {
        const QRect tiles = tilesPlace(width);
        return std::max(previewPlace(width).bottom() + 1 + room, tiles.bottom() + 1) + bottom;
    }

protected:
    void resizeEvent(QResizeEvent *) override {
        preview_->setGeometry(previewPlace(width()));
        const QPoint corner = tilesPlace(width()).topLeft();
        const int columns = columnsIn(width());
        for (int index = 0; index < static_cast<int>(tiles_.size()); ++index) {
            const QSize size = tiles_.front()->sizeHint();
            const QPoint place((size.width() + betweenTiles) * (index % columns),
                               (size.height() + betweenRows) * (index / columns));
            tiles_[static_cast<std::size_t>(index)]->setGeometry({corner + place, size});
        }
    }

private:
    static constexpr int sides = 2 * CardRow::margin - room;
    static constexpr int mostColumns = 3;
    static constexpr int betweenTiles = 2;
    static constexpr int betweenRows = 6;

    QRect previewPlace(int width) const {
        const QSize whole = preview_->sizeHint();
        const QSize within(std::min(whole.width(), width - 2 * CardRow::margin), whole.height());
        return {QPoint(CardRow::margin, room), whole.scaled(within, Qt::KeepAspectRatio)};
    }

    int columnsIn(int width) const {
        const int tile = tiles_.front()->sizeHint().width() + betweenTiles;
        return std::clamp((width - sides + betweenTiles) / tile, 1, mostColumns);
    }

    QSize tilesSize(int columns) const {
        const int rows = (static_cast<int>(tiles_.size()) + columns - 1) / columns;
        const QSize tile = tiles_.front()->sizeHint();
        return {columns * (tile.width() + betweenTiles) - betweenTiles,
                rows * (tile.height() + betweenRows) - betweenRows};
    }

    QRect tilesPlace(int width) const {
        const QSize size = tilesSize(columnsIn(width));
        const QRect preview = previewPlace(width);
        const int right = width - CardRow::margin + room;
        const int besidePreview = preview.right() + 1 + gap;
        if (right - size.width() >= besidePreview)
            return {QPoint(right - size.width(), 0), size};
        return {QPoint(CardRow::margin - room, preview.bottom() + 1 + gap - room), size};
    }

    std::vector<StyleTile *> tiles() {
        std::vector<StyleTile *> tiles;
        for (const Background &theme : Theme::gradients()) {
            auto *tile = new StyleTile(theme);
            tile->setParent(this);
            group_->addButton(tile, theme.id);
            tiles.push_back(tile);
        }
        return tiles;
    }

    Settings &settings_;
    QButtonGroup *group_;
    BreakPreview *preview_;
    std::vector<StyleTile *> tiles_;
};

} // namespace

QWidget *styleChoice(Settings &settings) {
    return new StyleChoice(settings);
}

} // namespace pavonel
