#include "UI/SettingsWindow/Pages/Appearance/StyleChoice.h"

#include "Core/Settings.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/FocusRing.h"
#include "UI/SettingsWindow/Pages/Appearance/BreakPreview.h"
#include "UI/SettingsWindow/Pages/Appearance/StyleTile.h"
#include "UI/SettingsWindow/Rows/Piece.h"
#include "UI/Theme.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QSignalBlocker>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int room = FocusRing::room; // which the tiles have around them
constexpr int gap = 12;
constexpr int bottom = 14 - room;

/// The tiles stand beside the preview, or below it where there is no room.
class StyleChoiceWidget final : public QWidget, public Follower {
public:
    StyleChoiceWidget(Look &look, Settings &settings)
        : settings_(settings), group_(new QButtonGroup(this)), preview_(new BreakPreview(look, settings)),
          tiles_(tiles(look)) {
        preview_->setParent(this);
        tiles_->setParent(this);
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        connect(group_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
            if (on)
                settings_.backgroundStyle = id;
        });
        StyleChoiceWidget::readAgain();
    }

    QSize sizeHint() const override {
        const int width = sides + preview_->sizeHint().width() + gap + tiles_->sizeHint().width();
        return {width, heightForWidth(width)};
    }
    QSize minimumSizeHint() const override {
        return {sides + std::max(preview_->sizeHint().width(), tiles_->sizeHint().width()), 0};
    }
    int heightForWidth(int width) const override {
        const QRect tiles = tilesPlace(width);
        return std::max(previewPlace().bottom() + 1 + room, tiles.bottom() + 1) + bottom;
    }

    void readAgain() override {
        const QSignalBlocker silence(group_);
        group_->button(Theme::gradient(settings_.backgroundStyle).id)->setChecked(true);
    }

protected:
    void resizeEvent(QResizeEvent *) override {
        preview_->setGeometry(previewPlace());
        tiles_->setGeometry(tilesPlace(width()));
    }

private:
    static constexpr int sides = 2 * CardRow::margin - room;

    QRect previewPlace() const { return {QPoint(CardRow::margin, room), preview_->sizeHint()}; }

    QRect tilesPlace(int width) const {
        const QSize size = tiles_->sizeHint();
        const int right = width - CardRow::margin + room;
        const int besidePreview = previewPlace().right() + 1 + gap;
        if (right - size.width() >= besidePreview)
            return {QPoint(right - size.width(), 0), size};
        return {QPoint(CardRow::margin - room, previewPlace().bottom() + 1 + gap - room), size};
    }

    QWidget *tiles(Look &look) {
        constexpr int columns = 3;
        auto *place = new QWidget;
        auto *grid = new QGridLayout(place);
        grid->setContentsMargins({});
        grid->setHorizontalSpacing(2);
        grid->setVerticalSpacing(6);
        for (const Background &theme : Theme::gradients()) {
            auto *tile = new StyleTile(look, theme);
            group_->addButton(tile, theme.id);
            grid->addWidget(tile, theme.id / columns, theme.id % columns, Qt::AlignTop);
        }
        return place;
    }

    Settings &settings_;
    QButtonGroup *group_;
    BreakPreview *preview_;
    QWidget *tiles_;
};

} // namespace

QWidget *StyleChoice::make(Look &look) const {
    return new StyleChoiceWidget(look, settings);
}

} // namespace pavonel
