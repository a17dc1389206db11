#include "Wayland/compositor.h"
#include "support/OtherWindow.h"
#include "support/VirtualInput.h"
#include "support/waitUntil.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QByteArray keyA = "key " + QByteArray::number(Qt::Key_A);

TEST(Sway, shows_the_windows_of_programs_and_hands_them_keys_and_clicks) {
    OtherWindow window(compositor().environment());
    ASSERT_TRUE(window.becomesActive());
    ASSERT_TRUE(window.isPainted(Sway::outputSize)); // the only one has its output to itself
    compositor().input().press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return window.times(keyA) == 1; }));
    compositor().click(QPoint(500, 400));
    EXPECT_TRUE(waitUntil([&] { return window.times("click") == 1; }));
    EXPECT_TRUE(waitUntil([] {
        const QImage picture = compositor().picture();
        return picture.pixelColor(500, 400) == OtherWindow::colour() &&
               picture.pixelColor(1500, 400) == Sway::background();
    }));
}

TEST(Sway, takes_outputs_away_and_brings_them_back) {
    ASSERT_EQ(QGuiApplication::screens().size(), 2);
    compositor().removeOutput(QGuiApplication::screens().last()->name());
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::screens().size() == 1; }));
    ASSERT_TRUE(compositor().addOutput());
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::screens().size() == 2; }));
}

} // namespace

} // namespace pavonel::test
