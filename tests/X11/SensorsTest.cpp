#include "Platform/Linux/Applications/LinuxApplications.h"
#include "Platform/Linux/Audio/PulseAudioDevices.h"
#include "Platform/Linux/PipeWire/PipeWireScreenCasts.h"
#include "Platform/Linux/X11/X11IdleTime.h"
#include "Platform/Linux/X11/X11Screens.h"
#include "Platform/Linux/X11/X11Windows.h"
#include "X11/OtherProgram.h"
#include "support/RecorderTurn.h"
#include "support/RecordingStream.h"
#include "support/Scenario.h"
#include "support/SoundServer.h"

#include <algorithm>
#include <climits>
#include <ctime>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// The scheduler over all the real sensors of a desktop: one tick a second of real time.
class SensorsTest : public testing::TestWithParam<SoundServer::Kind>, protected OtherProgram {
protected:
    SensorsTest() {
        day.settings.naturalBreakEnabled = false;  // nobody touches this server's keyboard
        day.settings.pauseOnScreenSharing = false; // a recorder may belong to another test
        server().start(XServer::WindowManager::openbox);
        sound.start();
        tick(); // connects
        tick();
    }
    ~SensorsTest() override { server().stopWindowManager(); }

    void furnish(FakePlatform &platform) {
        const auto x = X11Connection::open(server().display());
        const auto windows = std::make_shared<X11Windows>(x);
        platform.idleTime = x11::makeIdleTime(x);
        platform.audioDevices = std::make_unique<PulseAudioDevices>();
        platform.windowList = std::make_unique<X11WindowList>(windows);
        platform.screens = std::make_unique<X11Screens>(x);
        platform.applications = std::make_unique<LinuxApplications>(
            std::make_unique<X11FrontWindow>(windows), std::make_unique<PipeWireScreenCasts>(),
            LinuxApplications::Folders{.processes = "/proc", .desktopFiles = {folder.path()}}, platform.loop);
    }
    void tick() {
        waitUntil([] { return false; }, 1000);
        const double before = processorSeconds();
        day.advance(1);
        longest = std::max(longest, processorSeconds() - before);
    }
    /// How many ticks it takes until the wanted reason holds.
    int ticksUntil(std::optional<PauseReason> wanted) {
        constexpr int most = generousTimeout / 1000;
        for (int ticks = 1; ticks <= most; ++ticks) {
            tick();
            if (day.controller.pauseReason.get() == wanted)
                return ticks;
        }
        return INT_MAX;
    }
    bool becomes(std::optional<PauseReason> wanted) { return ticksUntil(wanted) != INT_MAX; }
    bool neverHolds() {
        for (int ticks = 0; ticks < 3; ++ticks) {
            tick();
            if (day.controller.pauseReason.get())
                return false;
        }
        return true;
    }
    bool serverRuns(const char *list, const char *device) {
        return waitUntil(
            [&] { return sound.isRunning(QString::fromLatin1(list), QString::fromLatin1(device)); });
    }
    /// As a focus application, in front.
    xcb_window_t openEditor() {
        install(QStringLiteral("org.example.Editor"),
                "Exec=" + folder.filePath(QStringLiteral("pavonel-test-player")).toLocal8Bit() + "\n");
        day.settings.deepFocusApps = QStringList{QStringLiteral("org.example.Editor")};
        return open({0, 0, 800, 600});
    }

    SoundServer sound{GetParam()};
    Scenario day{[this](FakePlatform &platform) { furnish(platform); }};
    double longest = 0; ///< Seconds of processor time in one tick.
};

INSTANTIATE_TEST_SUITE_P(With, SensorsTest,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto &kind) {
                             return kind.param == SoundServer::Kind::pulseAudio ? "PulseAudio" : "PipeWire";
                         });

} // namespace

TEST_P(SensorsTest, a_call_holds_with_microphone_within_two_ticks_and_lets_go_within_two) {
    bool inTime = false; // a busy machine can be late once
    for (int calls = 0; calls < 5 && !inTime; ++calls) {
        auto call = sound.record();
        ASSERT_TRUE(serverRuns("sources", "mic"));
        inTime = ticksUntil(PauseReason::microphone) <= 2;
        const Seconds counted = day.controller.microElapsed;
        tick();
        EXPECT_EQ(day.controller.microElapsed.get(), counted) << "nothing is counted during a call";
        call.reset();
        inTime = ticksUntil(std::nullopt) <= 2 && inTime;
        tick();
        EXPECT_GT(day.controller.microElapsed.get(), counted);
    }
    EXPECT_TRUE(inTime) << "not at any of five calls";
}

TEST_P(SensorsTest, a_level_meter_does_not_hold) {
    const RecordingStream meter(RecordingStream::Kind::levelMeter);
    ASSERT_TRUE(serverRuns("sources", "mic"));
    EXPECT_TRUE(neverHolds());
}

TEST_P(SensorsTest, playing_holds_with_audio_only_while_that_is_on) {
    const auto music = sound.play();
    ASSERT_TRUE(serverRuns("sinks", "spk"));
    EXPECT_TRUE(neverHolds());
    day.settings.pauseOnAudio = true;
    EXPECT_TRUE(becomes(PauseReason::audio));
    day.settings.pauseOnAudio = false;
    EXPECT_LE(ticksUntil(std::nullopt), 1);
}

TEST_P(SensorsTest, a_recorder_that_is_not_in_front_holds_with_screen_sharing) {
    const RecorderTurn turn;
    day.settings.pauseOnScreenSharing = true;
    open({0, 0, 800, 600});
    EXPECT_TRUE(neverHolds());
    auto recorder = run(QStringLiteral("simplescreenrecorder"));
    EXPECT_TRUE(becomes(PauseReason::screenSharing));
    recorder.reset();
    EXPECT_TRUE(becomes(std::nullopt));
}

TEST_P(SensorsTest, a_fullscreen_window_in_front_holds_with_fullscreen) {
    const auto window = open({0, 0, 800, 600}, XClient::Kind::fullscreen);
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
    other->close(window);
    EXPECT_TRUE(becomes(std::nullopt));
}

TEST_P(SensorsTest, a_focus_application_in_front_holds_with_deep_focus_by_its_desktop_file) {
    const auto window = openEditor();
    EXPECT_TRUE(becomes(PauseReason::deepFocus));
    day.settings.deepFocusApps = QStringList{QStringLiteral("org.example.editor")};
    EXPECT_LE(ticksUntil(std::nullopt), 1) << "letters count";
    day.settings.deepFocusApps = QStringList{QStringLiteral("org.example.Editor")};
    EXPECT_LE(ticksUntil(PauseReason::deepFocus), 1);
    other->close(window);
    EXPECT_TRUE(becomes(std::nullopt));
}

TEST_P(SensorsTest, with_everything_true_the_reasons_rank_in_their_order) {
    const RecorderTurn turn;
    day.settings.pauseOnScreenSharing = true;
    day.settings.pauseOnAudio = true;
    openEditor();
    EXPECT_TRUE(becomes(PauseReason::deepFocus));
    const auto music = sound.play();
    EXPECT_TRUE(becomes(PauseReason::audio));
    open({0, 0, 800, 600}, XClient::Kind::fullscreen);
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
    auto recorder = run(QStringLiteral("simplescreenrecorder"));
    EXPECT_TRUE(becomes(PauseReason::screenSharing));
    auto call = sound.record();
    EXPECT_TRUE(becomes(PauseReason::microphone));
    call.reset();
    EXPECT_TRUE(becomes(PauseReason::screenSharing));
    recorder.reset();
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
    EXPECT_LT(longest, 0.050);
}

TEST_P(SensorsTest, stepping_away_stops_the_count_and_a_key_goes_on_with_it) {
    day.settings.naturalBreakEnabled = true;
    day.settings.idleResetSeconds = 6;
    const auto counted = [&] { return day.controller.microElapsed.get(); };
    const auto counts = [&] {
        const Seconds before = counted();
        tick();
        return counted() > before;
    };
    server().xdotool({QStringLiteral("key"), QStringLiteral("a")});
    EXPECT_TRUE(waitUntil(counts));
    EXPECT_TRUE(waitUntil([&] { return !counts(); })) << "nobody is there";
    EXPECT_TRUE(waitUntil([&] {
        server().xdotool({QStringLiteral("key"), QStringLiteral("a")});
        return counts();
    }));
}

TEST_P(SensorsTest, a_sound_server_that_is_killed_ends_the_hold_and_is_heard_again_after_its_restart) {
    auto call = sound.record();
    EXPECT_TRUE(becomes(PauseReason::microphone));
    sound.kill();
    EXPECT_TRUE(becomes(std::nullopt));
    EXPECT_TRUE(neverHolds());
    sound.start();
    call = sound.record();
    EXPECT_TRUE(becomes(PauseReason::microphone));
    EXPECT_LT(longest, 0.050);
}

TEST_P(SensorsTest, a_fullscreen_program_that_dies_ends_the_hold) {
    open({0, 0, 800, 600}, XClient::Kind::fullscreen);
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
    other.reset(); // its connection breaks, and its windows are gone unasked
    player.reset();
    EXPECT_TRUE(becomes(std::nullopt));
    EXPECT_LT(longest, 0.050);
}

} // namespace pavonel::test
