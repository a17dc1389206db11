#include "support/KWin.h"

#include "support/OtherWindow.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

TEST(KWin, shows_the_windows_of_programs_and_hands_them_keys_and_clicks) {
    KWin kwin;
    if (IsSkipped())
        return;
    OtherWindow window(kwin.environment(), QStringLiteral("player"), OtherWindow::State::fullscreen);
    ASSERT_TRUE(window.becomesActive() && window.isPainted(Compositor::outputSize));
    kwin.input().press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return window.times("key " + QByteArray::number(Qt::Key_A)) == 1; }));
    kwin.click(QPoint(500, 400));
    EXPECT_TRUE(waitUntil([&] { return window.times("click") == 1; }));
    EXPECT_TRUE(waitUntil([&] {
        const QImage picture = kwin.picture();
        return picture.pixelColor(500, 400) == OtherWindow::colour() &&
               picture.pixelColor(1500, 400) == Compositor::background();
    }));
}

} // namespace

} // namespace pavonel::test
