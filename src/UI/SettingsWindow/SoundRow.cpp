#include "UI/SettingsWindow/SoundRow.h"

#include "Core/SystemBits.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/SettingsWindow/Piece.h"

namespace pavonel {

namespace {

const QString none = QStringLiteral("None");

class SoundRowWidget final : public CardRow, public Follower {
public:
    SoundRowWidget(Look &look, const SoundRow &row)
        : CardRow(look), sound_(row.sound), sounds_(row.sounds),
          listen_(Button::ofSymbol(look, QStringLiteral("speaker.wave.2"),
                                   QStringLiteral("Listen to %1").arg(row.label))),
          picker_(new PopUpButton(look, row.label, QStringList(none) + row.sounds.names())) {
        addLabel(row.label);
        add(listen_);
        add(picker_);
        picker_->onChoice = [this](const QString &choice) {
            sound_.set(choice);
            SoundPlayer::play(sounds_, choice);
        };
        connect(listen_, &Button::clicked, this, [this] { SoundPlayer::play(sounds_, sound_.get()); });
        SoundRowWidget::readAgain();
    }

    void readAgain() override {
        picker_->setChoice(sound_.get());
        listen_->setEnabled(sound_.get() != none);
    }

private:
    Bound<QString> sound_;
    Sounds &sounds_;
    Button *listen_;
    PopUpButton *picker_;
};

} // namespace

QWidget *SoundRow::make(Look &look) const {
    return new SoundRowWidget(look, *this);
}

} // namespace pavonel
