#include "UI/BackgroundImage.h"

#include <QBuffer>
#include <QColor>
#include <QImageReader>
#include <QPainter>

namespace pavonel {

namespace {

constexpr double dimming = 0.45;

/// The middle part of `whole` that has the aspect of `frame`.
QRect middleOf(QSize whole, QSize frame) {
    const QSize part = frame.scaled(whole, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    return {QPoint((whole.width() - part.width()) / 2, (whole.height() - part.height()) / 2), part};
}

/// Decodes at the wanted size, so that a huge file takes no more memory than a small one where its format
/// allows that.
QImage decode(QImageReader &reader, QSize size) {
    const QSize stored = reader.size();
    if (stored.isEmpty())
        return reader.read(); // a format that does not tell beforehand
    const bool turned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    const QSize frame = turned ? size.transposed() : size;
    const QSize whole = stored.scaled(frame, Qt::KeepAspectRatioByExpanding).expandedTo(frame);
    // A ribbon of a picture, blown up to fill the frame, would overflow it by far: only then cut before
    // scaling.
    constexpr qint64 overflow = 4;
    if (qint64(whole.width()) * whole.height() <= overflow * frame.width() * frame.height()) {
        reader.setScaledSize(whole);
    } else {
        reader.setClipRect(middleOf(stored, frame));
        reader.setScaledSize(frame);
    }
    return reader.read();
}

} // namespace

QByteArrayList pictureFormats() {
    QByteArrayList formats = QImageReader::supportedImageFormats();
    formats.removeIf([](const QByteArray &format) { return format.startsWith("svg"); });
    return formats;
}

QImage pictureImage(const QByteArray &file, QSize size) {
    if (size.isEmpty())
        return {};
    QBuffer content;
    content.setData(file);
    content.open(QIODevice::ReadOnly);
    QImageReader reader(&content);
    reader.setDecideFormatFromContent(true);
    if (!pictureFormats().contains(reader.format()))
        return {};
    reader.setAutoTransform(true);
    QImage picture = decode(reader, size);
    if (picture.isNull())
        return {};
    const QRect middle = middleOf(picture.size(), size);
    QImage filled(size, QImage::Format_RGB32);
    if (filled.isNull())
        return {};
    filled.fill(Qt::black); // shows through where the picture is transparent
    QPainter painter(&filled);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(filled.rect(), picture, middle);
    painter.fillRect(filled.rect(), QColor::fromRgbF(0, 0, 0, static_cast<float>(dimming)));
    return filled;
}

} // namespace pavonel
