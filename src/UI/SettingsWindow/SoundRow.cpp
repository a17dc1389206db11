#include "UI/SettingsWindow/SoundRow.h"

#include "Core/SystemBits.h"
#include "UI/SettingsWindow/Rows.h"

namespace pavonel {

namespace {

const QString none = QStringLiteral("None");

class ListenButton final : public Button, public Follower {
public:
    explicit ListenButton(const SoundRow &row)
        : Button({}, Role::bare, QStringLiteral("speaker.wave.2")), sound_(row.sound) {
        setAccessibleName(QStringLiteral("Listen to %1").arg(row.label));
        connect(this, &Button::clicked, this,
                [this, &sounds = row.sounds] { SoundPlayer::play(sounds, sound_.get()); });
        ListenButton::readAgain();
    }

    void readAgain() override { setEnabled(sound_.get() != none); }

private:
    Bound<QString> sound_;
};

} // namespace

QWidget *SoundRow::make(Look &look) const {
    const auto chooseAndPlay = [set = sound.set, &heard = sounds](const QString &choice) {
        set(choice);
        SoundPlayer::play(heard, choice);
    };
    return PickerRow{label,
                     {sound.get, chooseAndPlay},
                     QStringList(none) + sounds.names(),
                     [row = *this](Look &) { return new ListenButton(row); }}
        .make(look);
}

} // namespace pavonel
