#include "Platform/Linux/Audio/EventSounds.h"

#include "support/Scenario.h"
#include "support/SoundServer.h"
#include "support/ToolFixture.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

const ProgramFiles builtFiles(QStringLiteral(PAVONEL_PROGRAM));

/// What a sound server hears, from the making of this on.
class SoundObserver {
public:
    explicit SoundObserver(SoundServer &server)
        : server_(server),
          subscription_(QStringLiteral("pactl"), {QStringLiteral("subscribe")}, server.environment()) {
        // Every question asked of the server is a new client; the first that is reported shows that we hear.
        EXPECT_TRUE(waitUntil([this] {
            server_.pactl({QStringLiteral("info")});
            return !log().isEmpty();
        }));
    }

    /// Waits until a stream plays this file.
    bool hears(const char *file) {
        return waitUntil([&] { return playing().contains(QByteArray("/") + file + "\"\n"); });
    }
    bool hearsSilenceAgain() {
        return waitUntil([this] { return streams() > 0 && count("remove") == streams(); });
    }
    qsizetype streams() { return count("new"); }
    QByteArray playing() { return server_.pactl({QStringLiteral("list"), QStringLiteral("sink-inputs")}); }

private:
    const QByteArray &log() { return log_ += subscription_.process().readAllStandardOutput(); }
    qsizetype count(const char *event) {
        return log().count(QByteArray("Event '") + event + "' on sink-input");
    }

    SoundServer &server_;
    ChildProcess subscription_;
    QByteArray log_;
};

/// The controller over virtual time, with real sounds.
struct SoundingScenario : Scenario {
    SoundingScenario()
        : Scenario([](FakePlatform &fakes) {
              fakes.sounds = std::make_unique<EventSounds>(builtFiles, fakes.loop);
          }) {
        switchOffSensing(settings);
    }
    void completeBreak() {
        controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
        advance(20);
    }
};

/// A sound server that takes no part in the conversation.
class DeafServer {
public:
    explicit DeafServer(const QString &path) : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        const QByteArray name = QFile::encodeName(path);
        name.toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(socket_, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(socket_, 5), 0);
        qputenv("PULSE_SERVER", "unix:" + name);
    }
    DeafServer(const DeafServer &) = delete;
    DeafServer &operator=(const DeafServer &) = delete;
    ~DeafServer() {
        ::close(caller_);
        ::close(socket_);
    }

    bool isWaitedFor() {
        caller_ = ::accept(socket_, nullptr, nullptr);
        return caller_ >= 0;
    }

private:
    int socket_;
    int caller_ = -1;
};

/// A theme folder in the user's data and one of the system.
class SoundThemes : public ToolFixture {
protected:
    SoundThemes() {
        qputenv("XDG_DATA_HOME", QFile::encodeName(path(QStringLiteral("home"))));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(path(QStringLiteral("system"))));
    }
    void addSound(const char *name) const { write(QString::fromLatin1(name), "sound"); }

    /// Puts a recorder in the player's place.
    QByteArrayList played(const QString &name) {
        addTool(QStringLiteral("play-sound"), recordArguments);
        sounds.play(name);
        waitUntil([this] {
            loop.advance(0);
            return exists(QStringLiteral("arguments"));
        });
        return recordedArguments();
    }

    VirtualMainLoop loop;
    EventSounds sounds{files(), loop};
};

class OnSoundServer : public testing::TestWithParam<SoundServer::Kind> {};

} // namespace

TEST_P(OnSoundServer, start_and_end_sounds_are_heard_once_a_break) {
    SoundServer server(GetParam());
    server.start();
    SoundObserver observer(server);
    SoundingScenario day;
    day.controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
    EXPECT_TRUE(observer.hears("Submarine.wav"));
    day.advance(20);
    EXPECT_TRUE(observer.hears("Glass.wav"));
    day.advance(600);
    EXPECT_TRUE(observer.hearsSilenceAgain());
    EXPECT_EQ(observer.streams(), 2);
}

TEST_P(OnSoundServer, without_sounds_enabled_none_is_heard) {
    SoundServer server(GetParam());
    server.start();
    SoundObserver observer(server);
    SoundingScenario day;
    day.settings.soundEnabled = false;
    day.completeBreak();
    day.platform.sounds->play(QStringLiteral("Hero")); // would come after the others
    EXPECT_TRUE(observer.hears("Hero.wav"));
    EXPECT_TRUE(observer.hearsSilenceAgain());
    EXPECT_EQ(observer.streams(), 1);
}

TEST_P(OnSoundServer, a_sound_plays_at_the_volume_of_events_under_our_name) {
    VirtualMainLoop loop;
    SoundServer server(GetParam());
    server.start();
    SoundObserver observer(server);
    EventSounds(builtFiles, loop).play(QStringLiteral("Submarine"));
    EXPECT_TRUE(observer.hears("Submarine.wav"));
    const QByteArray stream = observer.playing();
    EXPECT_TRUE(stream.contains("media.role = \"event\"")) << stream.constData();
    EXPECT_TRUE(stream.contains("application.id = \"org.pavonel.Pavonel\"")) << stream.constData();
    EXPECT_TRUE(observer.hearsSilenceAgain());
}

INSTANTIATE_TEST_SUITE_P(EventSounds, OnSoundServer,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto &kind) {
                             return kind.param == SoundServer::Kind::pulseAudio ? "pulseaudio" : "pipewire";
                         });

TEST(EventSounds, a_break_cut_short_has_no_end_sound) {
    SoundServer server(SoundServer::Kind::pulseAudio);
    server.start();
    SoundObserver observer(server);
    SoundingScenario day;
    day.settings.endSound = QStringLiteral("Ping");
    day.controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
    EXPECT_TRUE(observer.hears("Submarine.wav"));
    day.controller.skip();
    day.platform.sounds->play(QStringLiteral("Hero"));
    EXPECT_TRUE(observer.hears("Hero.wav"));
    EXPECT_TRUE(observer.hearsSilenceAgain());
    EXPECT_EQ(observer.streams(), 2);
}

TEST(EventSounds, none_and_an_unknown_name_are_silent) {
    VirtualMainLoop loop;
    SoundServer server(SoundServer::Kind::pulseAudio);
    server.start();
    SoundObserver observer(server);
    EventSounds sounds(builtFiles, loop);
    for (const char *name : {"None", "", "Nonsense", "glass", "../sounds/Glass", "/dev/null"})
        sounds.play(QString::fromLatin1(name));
    sounds.play(QStringLiteral("Hero"));
    EXPECT_TRUE(observer.hears("Hero.wav"));
    EXPECT_TRUE(observer.hearsSilenceAgain());
    EXPECT_EQ(observer.streams(), 1);
}

TEST(EventSounds, a_sound_finds_a_server_that_came_later) {
    VirtualMainLoop loop;
    SoundServer server(SoundServer::Kind::pulseAudio);
    EventSounds sounds(builtFiles, loop);
    sounds.play(QStringLiteral("Glass")); // nobody there to hear it
    server.start();
    SoundObserver observer(server);
    sounds.play(QStringLiteral("Hero"));
    EXPECT_TRUE(observer.hears("Hero.wav"));
    server.kill();
    sounds.play(QStringLiteral("Glass"));
}

TEST(EventSounds, a_server_that_never_answers_holds_nobody_up) {
    VirtualMainLoop loop;
    const QTemporaryDir folder;
    DeafServer server(folder.filePath(QStringLiteral("native")));
    EventSounds(builtFiles, loop).play(QStringLiteral("Glass"));
    EXPECT_TRUE(waitUntil([&] { return server.isWaitedFor(); })) << "the player waits there, we do not";
}

TEST_F(SoundThemes, our_own_names_come_first) {
    addSound("program/resources/sounds/Tink.wav");
    addSound("program/resources/sounds/Basso.wav");
    addSound("system/sounds/freedesktop/stereo/bell.oga");
    addSound("system/sounds/freedesktop/stereo/alarm.oga");
    addSound("system/sounds/freedesktop/stereo/Tink.oga");
    addSound("system/sounds/freedesktop/stereo/off.disabled");
    addSound("system/sounds/freedesktop/index.theme");
    addSound("home/sounds/own/stereo/bell.ogg");
    addSound("home/sounds/own/stereo/chime.wav");
    EXPECT_EQ(sounds.names().join(u' '), u"Basso Tink alarm bell chime");
}

TEST_F(SoundThemes, a_themes_own_sound_comes_before_the_common_one) {
    addSound("system/sounds/freedesktop/stereo/bell.oga");
    addSound("system/sounds/ocean/stereo/bell.oga");
    EXPECT_EQ(played(QStringLiteral("bell")),
              QByteArrayList{QFile::encodeName(path(QStringLiteral("system/sounds/ocean/stereo/bell.oga")))});
}

TEST_F(SoundThemes, a_sound_of_the_users_comes_before_one_of_the_system) {
    addSound("system/sounds/freedesktop/stereo/bell.oga");
    addSound("home/sounds/freedesktop/stereo/bell.wav");
    EXPECT_EQ(
        played(QStringLiteral("bell")),
        QByteArrayList{QFile::encodeName(path(QStringLiteral("home/sounds/freedesktop/stereo/bell.wav")))});
}

TEST_F(SoundThemes, a_machine_without_any_sound_has_no_names_and_says_why) {
    EXPECT_TRUE(sounds.names().isEmpty());
    sounds.play(QStringLiteral("Glass"));
    EXPECT_EQ(sounds.limitation(), u"The program that plays sounds is missing.");
    addTool(QStringLiteral("play-sound"), "");
    EXPECT_EQ(sounds.limitation(), u"");
}

} // namespace pavonel::test
