#pragma once

#include <QImage>

namespace pavonel {

class InstalledApplications;
struct InstalledApplication;

/// The application's icon in the middle of a square of so many points, at the pixels of the sharpest screen;
/// for one without an icon, a tile with the first letter of its name.
QImage appIcon(InstalledApplications &applications, const InstalledApplication &application, int side);

} // namespace pavonel
