#pragma once

namespace pavonel {

/// Lets Qt find the fonts that a self-contained bundle carries, behind those of the system, which may have
/// none. Without such a bundle, or where the user names a configuration of their own, nothing changes. To be
/// called before the application object is made.
void useCarriedFonts();

} // namespace pavonel
