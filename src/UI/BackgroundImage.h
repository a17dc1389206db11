#pragma once

#include <QByteArrayList>
#include <QImage>

namespace pavonel {

struct Background;

/// The theme's gradient at this size in device pixels: opaque, with straight lines of equal colour across the
/// diagonal, dithered so that a dark one shows no bands.
QImage gradientImage(const Background &theme, QSize size);

/// Bytes: no picture is worth more memory on its way to the screen.
constexpr qint64 largestPictureFile = qint64{1} << 28;

/// The formats of pictures, as Qt names them: all but those of drawings, which can have Qt read other files.
QByteArrayList pictureFormats();

/// The picture in the content of a file, filling the size in device pixels with its aspect kept and its
/// middle shown, and dimmed so that white text stays legible on it. Null when there is no readable picture.
/// Can take seconds for a huge one; may be called on any thread.
QImage pictureImage(const QByteArray &file, QSize size);

} // namespace pavonel
