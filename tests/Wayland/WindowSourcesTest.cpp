#include "Platform/Linux/Sway/SwayWindows.h"
#include "Platform/Linux/Wayland/ForeignToplevels.h"
#include "Wayland/compositor.h"
#include "support/OtherWindow.h"
#include "support/waitUntil.h"

#include <QGuiApplication>
#include <QWidget>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// What both ways of asking sway have in common.
class WindowSourcesTest : public testing::TestWithParam<bool> {
protected:
    static std::unique_ptr<WindowSource> make(bool ipc) {
        if (!ipc)
            return std::make_unique<ForeignToplevels>(WaylandConnection::open());
        qputenv("SWAYSOCK", compositor().environment().value(QStringLiteral("SWAYSOCK")).toLocal8Bit());
        return SwayWindows::make();
    }
    static std::unique_ptr<OtherWindow> open(const char *name, OtherWindow::State state = {}) {
        auto window =
            std::make_unique<OtherWindow>(compositor().environment(), QString::fromLatin1(name), state);
        EXPECT_TRUE(window->becomesActive());
        return window;
    }
    bool isInFront(const char *name) {
        return waitUntil([&] {
            const auto front = source->front();
            return front ? front->windowClass == QLatin1StringView(name) : *name == '\0';
        });
    }
    bool areFullscreen(std::size_t count) {
        return waitUntil([&] { return source->fullscreen().size() == count; });
    }

    std::unique_ptr<WindowSource> source = make(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Sway, WindowSourcesTest, testing::Bool(),
                         [](const auto &ipc) { return ipc.param ? "by_ipc" : "by_foreign_toplevels"; });

TEST_P(WindowSourcesTest, tells_which_application_is_in_front) {
    EXPECT_TRUE(waitUntil([&] { return source->isTelling(); }));
    EXPECT_TRUE(isInFront(""));
    const auto first = open("first");
    EXPECT_TRUE(isInFront("first"));
    const auto numberOfFirst = source->front()->window;
    auto second = open("second");
    EXPECT_TRUE(isInFront("second"));
    EXPECT_NE(source->front()->window, numberOfFirst);
    EXPECT_EQ(source->front()->processId, GetParam() ? second->processId() : 0);
    second.reset();
    EXPECT_TRUE(isInFront("first"));
    EXPECT_EQ(source->front()->window, numberOfFirst);
}

TEST_P(WindowSourcesTest, tells_about_fullscreen_as_it_comes_and_goes) {
    const auto other = open("other");
    EXPECT_TRUE(isInFront("other"));
    EXPECT_TRUE(areFullscreen(0)) << "though it fills its output";
    compositor().command(QStringLiteral("fullscreen enable"));
    EXPECT_TRUE(areFullscreen(1));
    EXPECT_EQ(source->fullscreen().front().owner, source->front()->processId);
    compositor().command(QStringLiteral("fullscreen disable"));
    EXPECT_TRUE(areFullscreen(0));
}

TEST_P(WindowSourcesTest, a_window_of_our_own_is_not_in_front) {
    const auto other = open("other");
    EXPECT_TRUE(isInFront("other"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.pavonel.Pavonel"));
    QWidget ours;
    ours.show();
    EXPECT_TRUE(isInFront(""));
    ours.hide();
    EXPECT_TRUE(isInFront("other"));
}

TEST_P(WindowSourcesTest, a_fullscreen_window_is_as_large_as_its_screen) {
    const auto player = open("player", OtherWindow::State::fullscreen);
    std::vector<std::unique_ptr<WindowSource>> sources;
    sources.push_back(std::move(source));
    ReportedWindowList list(std::make_shared<WindowSources>(std::move(sources)));
    std::vector<OnScreenWindow> windows;
    EXPECT_TRUE(waitUntil([&] {
        windows = list.onScreenWindows();
        return !windows.empty();
    }));
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows.front().owner, GetParam() ? player->processId() : 0);
    EXPECT_EQ(windows.front().layer, 0);
    ASSERT_TRUE(windows.front().bounds);
    EXPECT_EQ(windows.front().bounds->size(), Compositor::outputSize);
    EXPECT_EQ(list.limitation(), QString());
}

} // namespace

} // namespace pavonel::test
