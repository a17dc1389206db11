#pragma once

#include <functional>

class QString;
class QWidget;

namespace pavonel {

class InstalledApplications;

/// Lets the user choose one of the installed applications, on a sheet over the window of `anchor`, which it
/// does not outlive. `choose` is given the identifier.
void chooseApplication(InstalledApplications &applications, QWidget &anchor,
                       std::function<void(const QString &)> choose);

} // namespace pavonel
