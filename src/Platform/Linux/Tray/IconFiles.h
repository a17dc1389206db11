#pragma once

#include "Platform/BackgroundTask.h"

#include <QImage>
#include <QSet>
#include <QString>

#include <functional>
#include <vector>

namespace pavonel {

/// Icons as files, for hosts of the menu bar that know an icon only by its name: a folder of the user that
/// serves as an icon theme path. Its disk can take its time, so writing goes on aside.
class IconFiles {
public:
    /// `isWritten` is called with the name of an icon that is still the last one asked for.
    IconFiles(QString folder, MainLoop &loop, std::function<void(const QString &)> isWritten);

    /// The name under which the host finds the icon; empty until it is written, and where it cannot be.
    QString nameFor(const QString &symbol, const std::vector<QImage> &tinted);

private:
    struct Icon {
        QString name;
        QImage image;
    };

    void write();
    void conclude(const QString &name);

    QString folder_;
    MainLoop &loop_;
    std::function<void(const QString &)> isWritten_;
    Icon wanted_;
    QSet<QString> written_;
    BackgroundTask writing_;
};

/// The image with every pixel in `colour`, at the opacity it had.
QImage tinted(const QImage &image, const QColor &colour);

} // namespace pavonel
