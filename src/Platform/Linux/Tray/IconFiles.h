#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace pavonel {

/// Icons as files, for hosts of the menu bar that know an icon only by its name: a folder of the user that
/// serves as an icon theme path.
class IconFiles {
public:
    explicit IconFiles(QString folder) : folder_(std::move(folder)) {}

    const QString &folder() const { return folder_; }

    /// The name under which the host finds the icon; empty when it cannot be written.
    QString nameFor(const QString &symbol, const std::vector<QImage> &tinted);

private:
    QString folder_;
};

/// The image with every pixel in `colour`, at the opacity it had.
QImage tinted(const QImage &image, const QColor &colour);

} // namespace pavonel
