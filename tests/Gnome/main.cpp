#include "Gnome/GnomeShell.h"
#include "support/environment.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace {

/// Where there is no GNOME Shell every test is left out, and says so in the form that CTest looks for.
class OnlyWithGnome final : public testing::Environment {
    void SetUp() override {
        if (!pavonel::test::GnomeShell::isThere())
            GTEST_SKIP() << "[  SKIPPED ] GNOME Shell is not installed: ./test --gnome does that.";
    }
};

} // namespace

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new OnlyWithGnome);
    pavonel::test::completeEnvironment();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
