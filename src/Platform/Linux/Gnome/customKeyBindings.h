#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace pavonel {

/// One of the shortcuts that people make in GNOME's settings, where it is listed too.
struct CustomKeyBinding {
    QString action;      ///< Of our application on the bus: what the keys do.
    QString title;       ///< For people.
    QString accelerator; ///< As GNOME writes it: "<Control><Alt><Super>b".
    bool operator==(const CustomKeyBinding &) const = default;
};

struct CustomKeyBindings {
    bool areKept = false;  ///< Whether GNOME's settings could be read and written.
    bool wereOurs = false; ///< Whether any of ours was there before.
    QStringList taken;     ///< The accelerators that something else in GNOME's settings has.
};

/// Brings it about that of ours exactly these are there, whatever an earlier run left, and touches no others.
/// Runs the program `gsettings` a few times and waits for it; any thread may call it.
CustomKeyBindings keepCustomKeyBindings(const std::vector<CustomKeyBinding> &wanted);

} // namespace pavonel
