#include "Platform/WindowSystem.h"
#include "Wayland/compositor.h"

#include <QApplication>

#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {
Sway *running = nullptr;
}

Sway &compositor() {
    return *running;
}

} // namespace pavonel::test

/// Qt (6.4) never frees what it bound in the compositor's registry.
extern "C" const char *__lsan_default_suppressions() {
    return "leak:libwayland-client.so\n";
}

extern "C" const char *__lsan_default_options() {
    return "print_suppressions=0";
}

/// These tests run with Qt on a Wayland compositor, which has to be there before Qt is.
int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_NO_XDG_DESKTOP_PORTAL",
            "1"); // Qt (6.8) loses its question to the portal where nobody answers it
    std::optional<pavonel::test::Sway> sway;
    if (GTEST_FLAG_GET(list_tests)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else {
        sway.emplace();
        sway->becomeOurDisplay();
        pavonel::chooseWindowSystem();
        pavonel::test::running = &*sway;
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
