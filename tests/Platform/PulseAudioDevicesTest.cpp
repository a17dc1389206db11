#include "Platform/Linux/Audio/PulseAudioDevices.h"

#include "support/HostileSocket.h"
#include "support/RecordingStream.h"
#include "support/SoundServer.h"
#include "support/waitUntil.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

void aSecondPasses() {
    waitUntil([] { return false; }, 1000);
}

/// Asks once a second, as the scheduler does, until the answer is the wanted one; how many times it took.
template <class Question> int ticksUntil(Question question, bool wanted) {
    for (int tick = 1; tick <= 30; ++tick) {
        if (question() == wanted)
            return tick;
        aSecondPasses();
    }
    return INT_MAX;
}

} // namespace

class SoundServerTest : public ::testing::TestWithParam<SoundServer::Kind> {
protected:
    bool serverRuns(const char *list, const char *device) {
        return waitUntil(
            [&] { return server.isRunning(QString::fromLatin1(list), QString::fromLatin1(device)); });
    }
    auto input() {
        return [this] { return devices.isDefaultInputRunning(); };
    }
    auto output() {
        return [this] { return devices.isDefaultOutputRunning(); };
    }
    bool becomes(std::function<bool()> question, bool wanted) {
        return waitUntil([&] { return question() == wanted; });
    }

    SoundServer server{GetParam()};
    PulseAudioDevices devices;
};

INSTANTIATE_TEST_SUITE_P(Each, SoundServerTest,
                         ::testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto &server) {
                             return server.param == SoundServer::Kind::pulseAudio ? "PulseAudio" : "PipeWire";
                         });

TEST_P(SoundServerTest, a_recording_client_is_seen_within_two_ticks_of_its_start_and_of_its_end) {
    server.start();
    EXPECT_FALSE(input()());
    aSecondPasses();
    auto recorder = server.record();
    ASSERT_TRUE(serverRuns("sources", "mic"));
    EXPECT_LE(ticksUntil(input(), true), 2);
    EXPECT_FALSE(output()());
    recorder.reset();
    EXPECT_LE(ticksUntil(input(), false), 2);
}

TEST_P(SoundServerTest, playing_sound_is_seen_within_two_ticks_of_its_start_and_of_its_end) {
    server.start();
    EXPECT_FALSE(output()());
    aSecondPasses();
    auto player = server.play();
    ASSERT_TRUE(serverRuns("sinks", "spk"));
    EXPECT_LE(ticksUntil(output(), true), 2);
    EXPECT_FALSE(input()());
    player.reset();
    EXPECT_LE(ticksUntil(output(), false), 2);
}

TEST_P(SoundServerTest, our_own_sounds_do_not_count) {
    server.start();
    output()();
    const auto own = server.playAs(QStringLiteral("org.pavonel.Pavonel"));
    ASSERT_TRUE(serverRuns("sinks", "spk"));
    for (int tick = 0; tick < 3; ++tick) {
        EXPECT_FALSE(output()());
        aSecondPasses();
    }
    const auto player = server.playAs(QStringLiteral("org.example.Player"));
    EXPECT_TRUE(becomes(output(), true)) << "somebody else plays besides";
}

TEST_P(SoundServerTest, a_level_meter_is_no_recording) {
    server.start();
    input()();
    const RecordingStream meter(RecordingStream::Kind::levelMeter);
    ASSERT_TRUE(serverRuns("sources", "mic"));
    for (int tick = 0; tick < 3; ++tick) {
        EXPECT_FALSE(input()());
        aSecondPasses();
    }
    const auto recorder = server.record();
    EXPECT_TRUE(becomes(input(), true)) << "somebody records besides the meter";
}

TEST_P(SoundServerTest, a_stream_on_hold_is_no_recording) {
    server.start();
    input()();
    const RecordingStream meter(RecordingStream::Kind::levelMeter); // or the device would not run at all
    const RecordingStream held(RecordingStream::Kind::onHold);
    ASSERT_TRUE(serverRuns("sources", "mic"));
    for (int tick = 0; tick < 3; ++tick) {
        EXPECT_FALSE(input()());
        aSecondPasses();
    }
}

TEST_P(SoundServerTest, recording_what_is_played_is_no_use_of_the_microphone) {
    server.start();
    input()();
    const auto player = server.play();
    const auto recorder = server.record(QStringLiteral("spk.monitor"));
    ASSERT_TRUE(becomes(output(), true));
    for (int tick = 0; tick < 3; ++tick) {
        EXPECT_FALSE(input()());
        aSecondPasses();
    }
    if (GetParam() == SoundServer::Kind::pulseAudio) {
        server.pactl({QStringLiteral("set-default-source"), QStringLiteral("spk.monitor")});
        aSecondPasses();
        EXPECT_FALSE(input()()) << "a monitor stays one as the default source";
    }
}

TEST_P(SoundServerTest, a_server_that_starts_late_vanishes_and_comes_back_is_noticed) {
    EXPECT_FALSE(input()());
    EXPECT_TRUE(waitUntil([&] { return !devices.limitation().isEmpty(); }));

    server.start();
    auto recorder = server.record();
    EXPECT_TRUE(becomes(input(), true));
    EXPECT_EQ(devices.limitation(), QString());

    server.kill();
    EXPECT_TRUE(becomes(input(), false));
    EXPECT_NE(devices.limitation(), QString());

    server.start();
    recorder = server.record();
    EXPECT_TRUE(becomes(input(), true));
}

TEST_P(SoundServerTest, only_the_device_that_is_the_default_one_now_counts) {
    server.start();
    server.addSource(QStringLiteral("other"));
    const auto makeDefault = [&](const char *source) {
        server.pactl({QStringLiteral("set-default-source"), QString::fromLatin1(source)});
    };
    makeDefault("other");
    const auto recorder = server.record(QStringLiteral("mic"));
    ASSERT_TRUE(serverRuns("sources", "mic"));
    for (int tick = 0; tick < 3; ++tick) {
        EXPECT_FALSE(input()());
        aSecondPasses();
    }
    makeDefault("mic");
    EXPECT_TRUE(becomes(input(), true));
}

TEST(PulseAudioDevices, a_server_that_means_harm_holds_nothing_and_nobody_up) {
    SoundServer honest(SoundServer::Kind::pulseAudio);
    honest.start();
    const QString address = qEnvironmentVariable("PULSE_SERVER");
    const QString trueServer = address.sliced(QStringLiteral("unix:").size());
    const auto recorder = honest.record();
    const auto cutAfter = [&](qsizetype bytes) {
        return HostileSocket::between(
            trueServer, [](const QByteArray &piece) { return piece; }, bytes);
    };
    QByteArray noise(1 << 20, '\0');
    QRandomGenerator generator(4711);
    generator.fillRange(reinterpret_cast<quint32 *>(noise.data()), noise.size() / 4);
    const HostileSocket::Conduct conducts[] = {
        HostileSocket::silent(),
        HostileSocket::pouring(noise),
        HostileSocket::pouring(QByteArray(1 << 16, '\0')),
        cutAfter(0),
        cutAfter(20),
        cutAfter(100),
    };
    for (const auto &conduct : conducts) {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("native"));
        const HostileSocket hostile(path, conduct);
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(path));
        PulseAudioDevices devices;
        EXPECT_TRUE(waitUntil([&] {
            EXPECT_FALSE(devices.isDefaultInputRunning());
            return hostile.connections() > 0;
        }));
        EXPECT_FALSE(waitUntil([&] { return devices.isDefaultInputRunning(); }, 500));
        qputenv("PULSE_SERVER", address.toLocal8Bit());
    }
}

TEST(PulseAudioDevices, a_server_is_asked_once_its_socket_is_at_its_usual_place) {
    const QTemporaryDir folder;
    qunsetenv("PULSE_SERVER");
    qputenv("PULSE_RUNTIME_PATH", QFile::encodeName(folder.path()));
    PulseAudioDevices devices;
    EXPECT_TRUE(waitUntil([&] {
        EXPECT_FALSE(devices.isDefaultInputRunning());
        return !devices.limitation().isEmpty();
    }));
    const HostileSocket server(folder.filePath(QStringLiteral("native")), HostileSocket::silent());
    EXPECT_TRUE(waitUntil([&] {
        EXPECT_FALSE(devices.isDefaultInputRunning());
        return server.connections() > 0;
    }));
}

TEST(PulseAudioDevices, without_a_server_every_answer_is_harmless_and_the_reason_is_given) {
    qputenv("PULSE_SERVER", "unix:/nonexistent/native");
    PulseAudioDevices devices;
    EXPECT_FALSE(devices.isDefaultInputRunning());
    EXPECT_TRUE(waitUntil([&] { return !devices.limitation().isEmpty(); }));
    EXPECT_FALSE(devices.isDefaultInputRunning());
    EXPECT_FALSE(devices.isDefaultOutputRunning());
}

} // namespace pavonel::test
