#include "Platform/Linux/Tray/IconFiles.h"

#include <QColor>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSaveFile>

#include <utility>

namespace pavonel {

namespace {

QString fingerprint(const QImage &image) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArrayView(image.constBits(), image.sizeInBytes()));
    constexpr int digits = 8;
    return QString::fromLatin1(hash.result().toHex().left(digits));
}

bool isInPlace(const QString &folder, const QString &name, const QImage &image) {
    const QString path = folder + u'/' + name + QStringLiteral(".png");
    if (QFile::exists(path))
        return true;
    QSaveFile file(path);
    return QDir().mkpath(folder) && file.open(QIODevice::WriteOnly) && image.save(&file, "PNG") &&
           file.commit();
}

} // namespace

IconFiles::IconFiles(QString folder, MainLoop &loop, std::function<void(const QString &)> isWritten)
    : folder_(std::move(folder)), loop_(loop), isWritten_(std::move(isWritten)) {}

QString IconFiles::nameFor(const QString &symbol, const std::vector<QImage> &tinted) {
    if (tinted.empty())
        return {};
    // Hosts keep icons by name, so another picture gets another name.
    const QImage &image = tinted.back();
    wanted_ = {QStringLiteral("pavonel-%1-%2").arg(QString(symbol).replace(u'.', u'-'), fingerprint(image)),
               image};
    write();
    return written_.contains(wanted_.name) ? wanted_.name : QString();
}

void IconFiles::write() {
    if (written_.contains(wanted_.name) || writing_.isPending())
        return;
    writing_ =
        BackgroundTask::start(loop_, [this, folder = folder_, icon = wanted_]() -> BackgroundTask::Action {
            if (!isInPlace(folder, icon.name, icon.image))
                return {}; // tried again with the next icon
            return [this, name = icon.name] { conclude(name); };
        });
}

void IconFiles::conclude(const QString &name) {
    written_.insert(name);
    if (name == wanted_.name)
        isWritten_(name);
    else
        write();
}

QImage tinted(const QImage &image, const QColor &colour) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(result.rect(), colour);
    return result;
}

} // namespace pavonel
