#include "Core/Settings.h"
#include "UI/Controls/CardRow.h"
#include "UI/SettingsWindow/BackgroundParts.h"
#include "UI/SettingsWindow/BreakPreview.h"
#include "UI/SettingsWindow/Piece.h"
#include "UI/SettingsWindow/StyleTile.h"
#include "UI/Theme.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>

namespace pavonel {

namespace {

class StyleChoiceWidget final : public QWidget, public Follower {
public:
    StyleChoiceWidget(Look &look, Settings &settings) : settings_(settings), group_(new QButtonGroup(this)) {
        auto *line = new QHBoxLayout(this);
        constexpr int room = FocusRing::room; // which the tiles have around them
        line->setContentsMargins(CardRow::margin, 0, CardRow::margin - room, 14 - room);
        line->setSpacing(12);
        auto *preview = new QVBoxLayout;
        preview->setContentsMargins(0, room, 0, room);
        preview->addWidget(new BreakPreview(look, settings), 0, Qt::AlignTop);
        line->addLayout(preview);
        line->addStretch();
        line->addLayout(tiles(look));
        connect(group_, &QButtonGroup::idClicked, this, [this](int id) { settings_.backgroundStyle = id; });
        StyleChoiceWidget::readAgain();
    }

    void readAgain() override {
        group_->button(Theme::gradient(settings_.backgroundStyle).id)->setChecked(true);
    }

private:
    QGridLayout *tiles(Look &look) {
        constexpr int columns = 3;
        auto *grid = new QGridLayout;
        grid->setHorizontalSpacing(2);
        grid->setVerticalSpacing(6);
        for (const Background &theme : Theme::gradients()) {
            auto *tile = new StyleTile(look, theme);
            group_->addButton(tile, theme.id);
            grid->addWidget(tile, theme.id / columns, theme.id % columns, Qt::AlignTop);
        }
        return grid;
    }

    Settings &settings_;
    QButtonGroup *group_;
};

} // namespace

QWidget *StyleChoice::make(Look &look) const {
    return new StyleChoiceWidget(look, settings);
}

} // namespace pavonel
