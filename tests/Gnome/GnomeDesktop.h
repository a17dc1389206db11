#pragma once

#include "EndToEnd/ProgramAtHome.h"
#include "Gnome/GnomeShell.h"
#include "support/OtherWindow.h"

namespace pavonel::test {

/// GNOME Shell and the built program, which is driven and looked at from outside.
class GnomeDesktop : public ProgramAtHome {
public:
    explicit GnomeDesktop(GnomeShell::Extension extension = GnomeShell::Extension::missing);
    ~GnomeDesktop();

    static QRect screen(int index) {
        return {QPoint(GnomeShell::outputSize.width() * index, 0), GnomeShell::outputSize};
    }

    GnomeShell &shell() { return *shell_; }

    /// Asks the program over the bus for a break, as soon as it is there.
    void takeBreak();

    /// One of the properties that it shows on the bus; null while it is not there.
    QVariant status(const char *property);

    /// Whether a break covers so many outputs, and nothing else can be seen on these.
    bool waitForBreak(int outputs = 2);
    bool waitForNoBreak();

    /// All that the program wrote to its standard error so far.
    QByteArray complaints();

private:
    explicit GnomeDesktop(std::unique_ptr<GnomeShell> shell);
    QDBusMessage call(const QString &interface, const QString &method, const QVariantList &arguments);

    std::unique_ptr<GnomeShell> shell_;
};

} // namespace pavonel::test
