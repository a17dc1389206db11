#include "Core/Settings.h"
#include "Core/SystemBits.h"
#include "Platform/BackgroundTask.h"
#include "Platform/ForeignFile.h"
#include "Platform/Sounds.h"
#include "Platform/WindowLayers.h"
#include "UI/BackgroundImage.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Appearance/StyleChoice.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QStandardPaths>

#include <optional>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

const QString noSound = QStringLiteral("None");

/// A picture in small.
class Thumbnail final : public QWidget {
public:
    Thumbnail() { setFixedSize(64, 40); }

    void setPicture(const QImage &picture) {
        picture_ = picture;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        constexpr double radius = 6;
        QPainter painter(this);
        if (picture_.isNull())
            drawBody(painter, rect(), radius, visuals().palette().window, visuals().palette().cardOutline);
        else
            drawRounded(painter, rect(), radius, picture_);
    }

private:
    QImage picture_;
};

constexpr int plainHeight = 46;
constexpr int withPicture = 60;

QString pictureFilter() {
    QStringList patterns;
    for (const QByteArray &format : pictureFormats())
        patterns.append(QStringLiteral("*.") + QString::fromLatin1(format));
    return QStringLiteral("Images (%1)").arg(patterns.join(u' '));
}

/// The user's picture for the break screen: in small, with its name or what is the matter with it, and ways
/// to choose another one and to do without.
class CustomImageRow final : public CardRow {
public:
    explicit CustomImageRow(Settings &settings)
        : settings_(settings), thumbnail_(new Thumbnail), name_(new Text({}, Text::Style::label)),
          note_(new Text({}, Text::Style::note)), remove_(new Button(QStringLiteral("Remove"))) {
        auto *choose = new Button(QStringLiteral("Choose image…"));
        add(thumbnail_);
        addLines({name_, note_});
        add(remove_);
        add(choose);
        connect(remove_, &Button::clicked, this, [this] { settings_.customBackgroundPath = QString(); });
        connect(choose, &Button::clicked, this, [this] { this->choose(); });
        follow(*this, [this] { refresh(); });
    }

private:
    enum class State { none, loading, shown, unreadable };

    /// Loads aside, since a file can be huge or far away.
    void refresh() {
        const QString path = settings_.customBackgroundPath;
        if (path_ == path)
            return;
        path_ = path;
        loading_ = {};
        display(path.isEmpty() ? State::none : State::loading);
        if (path.isEmpty())
            return;
        const QSize pixels = (QSizeF(thumbnail_->size()) * devicePixelRatioF()).toSize();
        loading_ = BackgroundTask::start(visuals().loop(), [this, path, pixels]() -> BackgroundTask::Action {
            const auto file = readForeignFile(path, largestPictureFile);
            return [this, picture = file ? pictureImage(*file, pixels) : QImage()] {
                display(picture.isNull() ? State::unreadable : State::shown, picture);
            };
        });
    }

    void display(State state, const QImage &picture = {}) {
        state_ = state;
        thumbnail_->setPicture(picture);
        name_->setText(state == State::none ? QStringLiteral("No custom image")
                                            : QFileInfo(*path_).fileName());
        note_->setText(state == State::shown ? QStringLiteral("Shown in place of the style.")
                       : state == State::unreadable
                           ? QStringLiteral("It cannot be read, so the style is shown.")
                           : QString());
        note_->setStyle(state == State::unreadable ? Text::Style::failure : Text::Style::note);
        note_->setVisible(!note_->text().isEmpty());
        setMinimumHeight(visuals().lineHeight(state == State::none ? plainHeight : withPicture));
        thumbnail_->setVisible(state != State::none);
        remove_->setVisible(state != State::none);
    }

    /// Beside the picture, unless its disk may hold up the dialog.
    QString startFolder() const {
        return state_ == State::shown ? QFileInfo(*path_).path()
                                      : QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    }

    void choose() {
        auto *dialog =
            new QFileDialog(window(), QStringLiteral("Choose an image"), startFolder(), pictureFilter());
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setFileMode(QFileDialog::ExistingFile);
        connect(dialog, &QFileDialog::fileSelected, this,
                [this](const QString &file) { settings_.customBackgroundPath = file; });
        dialog->open();
    }

    Settings &settings_;
    std::optional<QString> path_; ///< That is shown; absent while nothing is yet.
    State state_ = State::none;
    BackgroundTask loading_;
    Thumbnail *thumbnail_;
    Text *name_;
    Text *note_;
    Button *remove_;
};

QWidget *listenButton(const QString &label, const std::function<QString()> &sound, Sounds &sounds) {
    auto *button = Button::ofSymbol(u"speaker.wave.2"_s, u"Listen to %1"_s.arg(label));
    QObject::connect(button, &Button::clicked, button,
                     [sound, &sounds] { SoundPlayer::play(sounds, sound()); });
    follow(*button, [button, sound] { button->setEnabled(sound() != noSound); });
    return button;
}

/// A picker of one of the system's sounds or none. A choice is heard at once, and again with the button
/// beside it.
QWidget *soundRow(const QString &label, const ValueBinding<QString> &sound, Sounds &sounds) {
    const auto chooseAndPlay = [set = sound.set, &sounds](const QString &choice) {
        set(choice);
        SoundPlayer::play(sounds, choice);
    };
    return pickerRow(label, {sound.get, chooseAndPlay}, QStringList(noSound) + sounds.names(),
                     listenButton(label, sound.get, sounds));
}

} // namespace

QWidgetList appearancePage(PageContext &context) {
    Settings &settings = context.settings;
    Sounds &player = context.sounds;
    const auto sounds = [&settings] { return settings.soundEnabled.get(); };
    const auto addMessage = [&settings](const QString &text) {
        settings.messages = settings.messages.get() + QStringList(text);
    };
    return {
        card(u"Break screen"_s, {},
             {
                 styleChoice(settings),
                 new CustomImageRow(settings),
                 limitationNote(context.display.layers),
             }),
        card(u"Sounds"_s, {},
             {
                 switchRow(u"Play sounds"_s, settings.soundEnabled),
                 enabledWhile(sounds, soundRow(u"Break starts"_s, settings.startSound, player)),
                 enabledWhile(sounds, soundRow(u"Break ends"_s, settings.endSound, player)),
                 limitationNote(player),
             }),
        card(u"Break messages"_s, u"One is picked at random for each break"_s,
             {
                 textList(settings.messages, {.entries = TextListOptions::Entries::editable}),
                 addField(u"Add a message"_s, u"Add the message"_s, addMessage),
             }),
    };
}

} // namespace pavonel
