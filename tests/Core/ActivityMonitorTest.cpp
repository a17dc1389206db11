#include "Core/ActivityMonitor.h"

#include "support/Scenario.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr ProcessId front = 42;

struct MonitorFixture {
    FakePlatform platform;
    Settings settings{platform.fakeDefaults, platform.loop};
    ActivityMonitor monitor{platform};

    std::optional<PauseReason> reason() const { return monitor.currentPauseReason(settings); }

    int queries() const {
        return platform.idle.queries + platform.audio.queries + platform.apps.runningQueries +
               platform.apps.frontmostQueries + platform.windows.queries + platform.fakeScreens.queries;
    }

    void putInFront(const QString &identifier = {}) { platform.apps.front = Application{front, identifier}; }
    void showWindow(double width, double height, ProcessId owner = front, std::optional<int> layer = 0) {
        platform.windows.windows.push_back({owner, layer, QRectF(100, 100, width, height)});
    }
    void showFullscreen() {
        putInFront();
        showWindow(1920, 1080);
    }
    void runRecorder(const QString &identifier = QStringLiteral("com.obsproject.obs-studio")) {
        platform.apps.applications.push_back({7, identifier});
    }
};

} // namespace

TEST(ActivityMonitor, with_every_switch_off_and_no_focus_application_nothing_is_asked) {
    MonitorFixture fixture;
    fixture.showFullscreen();
    fixture.runRecorder();
    fixture.platform.audio.input = fixture.platform.audio.output = true;
    switchOffSensing(fixture.settings);
    EXPECT_EQ(fixture.reason(), std::nullopt);
    EXPECT_EQ(fixture.queries(), 0);
}

TEST(ActivityMonitor, the_controller_asks_nothing_with_every_switch_off) {
    Scenario s;
    switchOffSensing(s.settings);
    s.advance(1500);
    EXPECT_EQ(s.platform.idle.queries + s.platform.audio.queries + s.platform.apps.runningQueries +
                  s.platform.apps.frontmostQueries + s.platform.windows.queries +
                  s.platform.fakeScreens.queries,
              0);
}

TEST(ActivityMonitor, a_tick_with_everything_on_asks_these_questions_and_no_more) {
    Scenario s;
    s.settings.pauseOnAudio = true;
    s.settings.deepFocusApps = QStringList{QStringLiteral("other")};
    s.platform.apps.front = Application{front, QStringLiteral("editor")};
    s.platform.windows.windows.push_back({front, 0, QRectF(0, 0, 800, 600)});
    s.advance(100);
    EXPECT_EQ(s.platform.idle.queries, 100);
    EXPECT_EQ(s.platform.audio.queries, 200); // input and output
    EXPECT_EQ(s.platform.apps.runningQueries, 100);
    EXPECT_EQ(s.platform.apps.frontmostQueries, 200); // for its windows and for its identifier
    EXPECT_EQ(s.platform.windows.queries, 100);
    EXPECT_EQ(s.platform.fakeScreens.queries, 100);
}

TEST(ActivityMonitor, a_question_whose_switch_is_off_is_never_asked) {
    MonitorFixture fixture;
    fixture.putInFront(QStringLiteral("editor"));
    fixture.settings.pauseOnMicrophone = false;
    fixture.reason();
    EXPECT_EQ(fixture.platform.audio.queries, 0);
    fixture.settings.pauseOnScreenSharing = false;
    const int walks = fixture.platform.apps.runningQueries;
    fixture.reason();
    EXPECT_EQ(fixture.platform.apps.runningQueries, walks);
    fixture.settings.pauseOnFullscreen = false;
    const int before = fixture.queries();
    fixture.reason();
    EXPECT_EQ(fixture.queries(), before); // audio is off by default
    fixture.settings.pauseOnAudio = true;
    fixture.reason();
    EXPECT_EQ(fixture.platform.audio.queries, 1);
    EXPECT_EQ(fixture.queries(), before + 1);
}

TEST(ActivityMonitor, what_weighs_less_is_not_asked_once_something_holds) {
    MonitorFixture fixture;
    fixture.platform.audio.input = true;
    EXPECT_EQ(fixture.reason(), PauseReason::microphone);
    EXPECT_EQ(fixture.queries(), 1);
}

TEST(ActivityMonitor, with_everything_true_the_reasons_rank_in_their_order) {
    MonitorFixture fixture;
    fixture.settings.pauseOnAudio = true;
    fixture.settings.deepFocusApps = QStringList{QStringLiteral("editor")};
    fixture.runRecorder();
    fixture.showFullscreen();
    fixture.putInFront(QStringLiteral("editor"));
    fixture.platform.audio.input = fixture.platform.audio.output = true;
    EXPECT_EQ(fixture.reason(), PauseReason::microphone);
    fixture.settings.pauseOnMicrophone = false;
    EXPECT_EQ(fixture.reason(), PauseReason::screenSharing);
    fixture.settings.pauseOnScreenSharing = false;
    EXPECT_EQ(fixture.reason(), PauseReason::fullscreen);
    fixture.settings.pauseOnFullscreen = false;
    EXPECT_EQ(fixture.reason(), PauseReason::audio);
    fixture.settings.pauseOnAudio = false;
    EXPECT_EQ(fixture.reason(), PauseReason::deepFocus);
    fixture.settings.deepFocusApps = QStringList();
    EXPECT_EQ(fixture.reason(), std::nullopt);
}

TEST(ActivityMonitor, a_microphone_outranks_a_fullscreen_application) {
    MonitorFixture fixture;
    fixture.showFullscreen();
    fixture.platform.audio.input = true;
    EXPECT_EQ(fixture.reason(), PauseReason::microphone);
}

TEST(ActivityMonitor, sound_that_plays_holds_only_when_asked_to) {
    MonitorFixture fixture;
    fixture.platform.audio.output = true;
    EXPECT_EQ(fixture.reason(), std::nullopt);
    fixture.settings.pauseOnAudio = true;
    EXPECT_EQ(fixture.reason(), PauseReason::audio);
}

TEST(ActivityMonitor, a_recorder_in_the_background_counts_as_screen_sharing) {
    for (const char *recorder : {"com.obsproject.obs-studio", "com.linebreak.CleanShotX", "com.loom.desktop",
                                 "com.telestream.screenflow10", "com.techsmith.camtasia2023",
                                 "com.apple.ScreenSharing", "com.apple.screencaptureui"}) {
        MonitorFixture fixture;
        fixture.putInFront(QStringLiteral("editor"));
        fixture.platform.apps.applications = {{1, {}}, {2, QStringLiteral("editor")}};
        EXPECT_EQ(fixture.reason(), std::nullopt);
        fixture.runRecorder(QString::fromLatin1(recorder));
        EXPECT_EQ(fixture.reason(), PauseReason::screenSharing) << recorder;
    }
}

TEST(ActivityMonitor, another_version_or_other_letters_are_no_recorder) {
    for (const char *other : {"com.telestream.screenflow9", "com.techsmith.camtasia2024",
                              "com.OBSproject.obs-studio", "com.obsproject.obs-studio ", "obs"}) {
        MonitorFixture fixture;
        fixture.runRecorder(QString::fromLatin1(other));
        EXPECT_EQ(fixture.reason(), std::nullopt) << other;
    }
}

TEST(ActivityMonitor, a_window_one_point_smaller_than_a_screen_is_fullscreen_two_points_is_not) {
    MonitorFixture fixture;
    fixture.putInFront();
    fixture.showWindow(1919, 1079);
    EXPECT_EQ(fixture.reason(), PauseReason::fullscreen);
    for (const auto &[width, height] :
         {std::pair{1918.0, 1078.0}, {1918.0, 1080.0}, {1920.0, 1078.0}, {1922.0, 1080.0}, {800.0, 600.0}}) {
        fixture.platform.windows.windows.clear();
        fixture.showWindow(width, height);
        EXPECT_EQ(fixture.reason(), std::nullopt) << width << " x " << height;
    }
    fixture.platform.windows.windows.clear();
    fixture.showWindow(1921.9, 1081.9);
    EXPECT_EQ(fixture.reason(), PauseReason::fullscreen);
}

TEST(ActivityMonitor, a_window_with_the_size_of_any_screen_counts_wherever_it_stands) {
    MonitorFixture fixture;
    fixture.platform.fakeScreens.screens.push_back({QStringLiteral("B"), {1920, 0, 1280, 1024}, {}, false});
    fixture.putInFront();
    fixture.showWindow(1280, 1024);
    EXPECT_EQ(fixture.reason(), PauseReason::fullscreen);
}

TEST(ActivityMonitor, the_width_of_one_screen_and_the_height_of_another_do_not_count) {
    MonitorFixture fixture;
    fixture.platform.fakeScreens.screens.push_back({QStringLiteral("B"), {1920, 0, 1280, 1024}, {}, false});
    fixture.putInFront();
    fixture.showWindow(1920, 1024);
    EXPECT_EQ(fixture.reason(), std::nullopt);
}

TEST(ActivityMonitor, only_normal_windows_of_the_frontmost_application_count) {
    MonitorFixture fixture;
    fixture.putInFront();
    fixture.showWindow(1920, 1080, front + 1);
    fixture.showWindow(1920, 1080, front, 25);
    fixture.showWindow(1920, 1080, front, std::nullopt);
    fixture.platform.windows.windows.push_back({std::nullopt, 0, QRectF(0, 0, 1920, 1080)});
    fixture.platform.windows.windows.push_back({front, 0, std::nullopt});
    EXPECT_EQ(fixture.reason(), std::nullopt);
    fixture.showWindow(1920, 1080); // the last in the list
    EXPECT_EQ(fixture.reason(), PauseReason::fullscreen);
}

TEST(ActivityMonitor, without_a_frontmost_application_windows_or_screens_nothing_is_fullscreen) {
    MonitorFixture fixture;
    fixture.showWindow(1920, 1080);
    EXPECT_EQ(fixture.reason(), std::nullopt);
    EXPECT_EQ(fixture.platform.windows.queries, 0);
    fixture.putInFront();
    fixture.platform.fakeScreens.screens.clear();
    EXPECT_EQ(fixture.reason(), std::nullopt);
    fixture.platform.windows.windows.clear();
    EXPECT_EQ(fixture.reason(), std::nullopt);
}

TEST(ActivityMonitor, a_focus_application_in_front_holds_by_its_exact_identifier) {
    MonitorFixture fixture;
    fixture.settings.deepFocusApps = QStringList{QStringLiteral("org.editor.Editor"), QString()};
    fixture.putInFront(QStringLiteral("org.editor.Editor"));
    EXPECT_EQ(fixture.reason(), PauseReason::deepFocus);
    fixture.putInFront(QStringLiteral("org.editor.editor"));
    EXPECT_EQ(fixture.reason(), std::nullopt);
    fixture.putInFront(); // without an identifier, which an empty entry does not match
    EXPECT_EQ(fixture.reason(), std::nullopt);
    fixture.platform.apps.front.reset();
    EXPECT_EQ(fixture.reason(), std::nullopt);
}

TEST(ActivityMonitor, idle_time_is_that_of_the_platform_and_zero_when_it_cannot_be_read) {
    MonitorFixture fixture;
    EXPECT_EQ(fixture.monitor.idleSeconds(), 0); // what the service answers on a failure
    fixture.platform.idle.seconds = 12.5;
    EXPECT_EQ(fixture.monitor.idleSeconds(), 12.5);
}

TEST(ActivityMonitor, programs_that_nobody_tells_of_matter_only_where_sharing_does) {
    MonitorFixture fixture;
    EXPECT_FALSE(fixture.monitor.mayBeHeldUntold(fixture.settings));
    fixture.platform.apps.mayHaveBegun = true;
    EXPECT_TRUE(fixture.monitor.mayBeHeldUntold(fixture.settings));
    fixture.settings.pauseOnScreenSharing = false;
    EXPECT_FALSE(fixture.monitor.mayBeHeldUntold(fixture.settings));
}

} // namespace pavonel::test
