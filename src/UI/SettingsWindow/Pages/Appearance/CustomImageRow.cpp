#include "Core/Settings.h"
#include "Platform/BackgroundTask.h"
#include "Platform/ForeignFile.h"
#include "UI/BackgroundImage.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Pages/Appearance/BreakScreenRows.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QStandardPaths>
#include <QWidget>

#include <optional>

namespace pavonel {

namespace {

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

} // namespace

QWidget *customImageRow(Settings &settings) {
    return new CustomImageRow(settings);
}

} // namespace pavonel
