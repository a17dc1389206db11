#include "Platform/Linux/Tray/IconFiles.h"

#include <QColor>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSaveFile>

namespace pavonel {

namespace {

QString fingerprint(const QImage &image) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArrayView(image.constBits(), image.sizeInBytes()));
    constexpr int digits = 8;
    return QString::fromLatin1(hash.result().toHex().left(digits));
}

bool isWritten(const QString &path, const QImage &image) {
    if (QFile::exists(path))
        return true;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && image.save(&file, "PNG") && file.commit();
}

} // namespace

QString IconFiles::nameFor(const QString &symbol, const std::vector<QImage> &tinted) {
    if (tinted.empty() || !QDir().mkpath(folder_))
        return {};
    // Hosts keep icons by name, so another picture gets another name.
    const QImage &image = tinted.back();
    const QString name =
        QStringLiteral("pavonel-%1-%2").arg(QString(symbol).replace(u'.', u'-'), fingerprint(image));
    return isWritten(folder_ + u'/' + name + QStringLiteral(".png"), image) ? name : QString();
}

QImage tinted(const QImage &image, const QColor &colour) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(result.rect(), colour);
    return result;
}

} // namespace pavonel
