#pragma once

#include <QString>

namespace pavonel {

class DesktopFileIndex;
class ProcessFolder;

/// The bundle identifier of a process: that of Pavonel's list for a known recorder, else the one of the
/// desktop file that Flatpak, its program or systemd names. Empty for a program that is no application.
QString identify(const ProcessFolder &process, const DesktopFileIndex &index);

} // namespace pavonel
