#pragma once

#include <functional>

class QImage;
class QString;
class QWidget;

namespace pavonel {

class InstalledApplications;
struct InstalledApplication;

/// The application's icon in the middle of a square for a row, at the pixels of the sharpest screen; for one
/// without an icon, a tile with the first letter of its name.
QImage appIcon(InstalledApplications &applications, const InstalledApplication &application);

/// Lets the user choose one of the installed applications, on a sheet over the window of `anchor`, which it
/// does not outlive. `choose` is given the identifier.
void chooseApplication(InstalledApplications &applications, QWidget &anchor,
                       std::function<void(const QString &)> choose);

} // namespace pavonel
