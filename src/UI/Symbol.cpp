#include "UI/Symbol.h"

#include <QDir>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>

/// The drawings lie in a static library, whose resources the linker leaves out unless somebody asks for them.
static void loadSymbols() {
    Q_INIT_RESOURCE(symbols);
}

namespace pavonel::Symbol {

namespace {

QDir drawings() {
    loadSymbols();
    return QDir(QStringLiteral(":/symbols"));
}

/// Template drawings lend their shape only.
void fillShape(QImage &image, const QColor &tint) {
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), tint);
}

/// Qt puts a stroke that is thinner than a pixel half a pixel aside, so a small drawing is made larger first.
QImage drawn(const QString &file, int pixels) {
    constexpr int thickStrokes = 16; // pixels of a whole drawing
    constexpr int enlarged = 4;
    const int side = pixels < thickStrokes ? pixels * enlarged : pixels;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer(file).render(&painter);
    painter.end();
    return side == pixels ? image
                          : image.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QImage image(const QString &name, qreal side, const QColor &tint, qreal devicePixelRatio) {
    constexpr qreal largest = 4096;
    const qreal pixels = std::round(side * devicePixelRatio);
    const QDir folder = drawings();
    const QString file = name + QStringLiteral(".svg");
    if (!(pixels >= 1 && pixels <= largest) || name.contains(QLatin1Char('/')) || !folder.exists(file))
        return {};
    QImage image = drawn(folder.filePath(file), static_cast<int>(pixels));
    fillShape(image, tint);
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

QImage mark(const QColor &tint, int devicePixelRatio) {
    loadSymbols();
    QImageReader reader(
        devicePixelRatio > 1 ? QStringLiteral(":/menubar@2x.png") : QStringLiteral(":/menubar.png"), "png");
    reader.setAutoDetectImageFormat(false); // which would load a plugin for each format there is
    QImage image = reader.read();
    if (image.isNull())
        return {};
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    fillShape(image, tint);
    image.setDevicePixelRatio(devicePixelRatio > 1 ? 2 : 1);
    return image;
}

QStringList names() {
    QStringList known = drawings().entryList(QDir::Files, QDir::Name);
    for (QString &file : known)
        file.chop(4); // ".svg"
    return known;
}

} // namespace pavonel::Symbol
