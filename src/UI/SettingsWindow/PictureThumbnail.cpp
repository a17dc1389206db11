#include "UI/SettingsWindow/PictureThumbnail.h"

#include "Platform/ForeignFile.h"
#include "UI/BackgroundImage.h"
#include "UI/Controls/Pixels.h"
#include "UI/SettingsWindow/RoundedImage.h"

#include <QPainter>

namespace pavonel {

namespace {

constexpr double radius = 6;

} // namespace

PictureThumbnail::PictureThumbnail(Look &look) : look_(look) {
    setFixedSize(PictureThumbnail::sizeHint());
}

void PictureThumbnail::setPath(const QString &path) {
    picture_ = {};
    loading_ = {};
    state_ = path.isEmpty() ? State::none : State::loading;
    update();
    if (path.isEmpty())
        return;
    const QSize pixels = (QSizeF(sizeHint()) * devicePixelRatioF()).toSize();
    loading_ = Errand::begin(look_.loop(), [this, path, pixels]() -> Errand::Action {
        const auto file = readForeignFile(path, largestPictureFile);
        return [this, picture = file ? pictureImage(*file, pixels) : QImage()] { take(picture); };
    });
}

void PictureThumbnail::take(const QImage &picture) {
    picture_ = picture;
    state_ = picture.isNull() ? State::unreadable : State::shown;
    update();
    if (onState)
        onState();
}

void PictureThumbnail::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    if (picture_.isNull())
        drawBody(painter, rect(), radius, look_.palette().window, look_.palette().cardOutline);
    else
        drawRounded(painter, rect(), radius, picture_);
}

} // namespace pavonel
