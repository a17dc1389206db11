#pragma once

#include <QString>

#include <cstdint>

namespace pavonel {

/// A combination as GNOME writes it, "<Control><Alt><Super>b": a letter is that of a US keyboard at the
/// position. Empty for a key other than letters and Escape.
QString gnomeAccelerator(std::uint32_t macKeyCode, std::uint32_t macModifiers);

/// The same for all ways of writing the same: in small letters, modifiers by their usual names and in order.
QString plainAccelerator(const QString &accelerator);

/// As people say it: "Ctrl+Alt+Super+B".
QString spokenAccelerator(const QString &accelerator);

} // namespace pavonel
