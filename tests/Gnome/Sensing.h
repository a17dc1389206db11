#pragma once

#include "Gnome/GnomeDesktop.h"
#include "support/waitUntil.h"

#include <QJsonObject>

#include <gtest/gtest.h>

namespace pavonel::test {

/// What the built program notices of the user and of other programs.
struct Sensing : testing::Test {
    explicit Sensing(GnomeShell::Extension extension) : desktop(extension) {}

    void start(const QJsonObject &settings) {
        desktop.store(settings);
        desktop.startProgram();
    }
    /// Empty for none.
    bool isHeldFor(const QString &reason) {
        return waitUntil([&] {
            const QVariant hold = desktop.status("Hold");
            return hold.isValid() && hold.toString() == reason;
        });
    }
    bool comesToPhase(const QString &phase) {
        return waitUntil([&] { return desktop.status("Phase").toString() == phase; });
    }
    std::unique_ptr<OtherWindow> open(const QString &name,
                                      OtherWindow::State state = OtherWindow::State::normal) {
        auto window = std::make_unique<OtherWindow>(shell().environment(), name, state);
        EXPECT_TRUE(window->becomesActive());
        return window;
    }
    GnomeShell &shell() { return desktop.shell(); }

    const QJsonObject neverAway{{QStringLiteral("naturalBreakEnabled"), false},
                                {QStringLiteral("microInterval"), 3600}};
    GnomeDesktop desktop;
};

struct GnomeAlone : Sensing {
    GnomeAlone() : Sensing(GnomeShell::Extension::missing) {}
};

struct GnomeWithExtension : Sensing {
    GnomeWithExtension() : Sensing(GnomeShell::Extension::enabled) {}
};

} // namespace pavonel::test
