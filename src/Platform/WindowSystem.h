#pragma once

namespace pavonel {

/// Chooses the window system that Qt shall use, by what the desktop offers; a choice of the user's
/// (`QT_QPA_PLATFORM`) holds. To be called before the application object is made.
void chooseWindowSystem();

} // namespace pavonel
