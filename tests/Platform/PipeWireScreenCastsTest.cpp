#include "Platform/Linux/PipeWire/PipeWireScreenCasts.h"

#include "support/HostileSocket.h"
#include "support/SoundServer.h"
#include "support/waitUntil.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <cstring>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// A source of video as a compositor or a camera offers it, and a program that may look at it.
class PipeWireScreenCastsTest : public testing::Test {
protected:
    PipeWireScreenCastsTest() { server.start(); }

    std::unique_ptr<ChildProcess> source(const char *role) {
        return gst(
            QStringLiteral("videotestsrc is-live=true ! video/x-raw,width=320,height=240 ! pipewiresink "
                           "mode=provide stream-properties=\"props,media.class=Video/Source,"
                           "node.name=fakecast,media.role=%1\"")
                .arg(QString::fromLatin1(role)));
    }
    std::unique_ptr<ChildProcess> viewer(const QString &program = gstLaunch) {
        return gst(QStringLiteral("pipewiresrc target-object=fakecast ! video/x-raw ! fakesink"), program);
    }
    /// Another program's viewer.
    std::unique_ptr<ChildProcess> viewerCalled(const char *name) {
        const QString program = folder.filePath(QString::fromLatin1(name));
        QFile::copy(QFileInfo(QStandardPaths::findExecutable(gstLaunch)).canonicalFilePath(), program);
        return viewer(program);
    }
    /// Whether PipeWire itself lists the source in this state.
    bool isListed(const char *state) {
        const auto dump =
            ChildProcess::run(QStringLiteral("pw-cli"), {QStringLiteral("info"), QStringLiteral("fakecast")},
                              server.environment());
        return dump.output.contains(QByteArray("state: \"") + state);
    }

    inline static const QString gstLaunch = QStringLiteral("gst-launch-1.0");
    QTemporaryDir folder;
    SoundServer server{SoundServer::Kind::pipeWire};
    PipeWireScreenCasts casts;

private:
    std::unique_ptr<ChildProcess> gst(const QString &pipeline, const QString &program = gstLaunch) {
        return std::make_unique<ChildProcess>(
            QStringLiteral("sh"),
            QStringList{QStringLiteral("-c"), QStringLiteral("exec \"$0\" -q ") + pipeline, program},
            server.environment());
    }
};

/// Passes on what a PipeWire server says, and says twice what objects there are.
class ObjectRepeater {
public:
    QByteArray operator()(const QByteArray &piece) {
        unread_ += piece;
        QByteArray result;
        while (unread_.size() >= headerSize) {
            const qsizetype size = headerSize + (word(1) & 0xff'ffff);
            if (unread_.size() < size)
                break;
            const bool isObject = word(0) == registry && word(1) >> 24 == 0;
            const QByteArray message = unread_.first(size);
            result += isObject ? message + message : message;
            unread_.remove(0, size);
        }
        return result;
    }

private:
    static constexpr qsizetype headerSize = 16;
    static constexpr quint32 registry = 2; ///< The first object that a client makes, after itself.

    quint32 word(int index) const {
        quint32 value = 0;
        std::memcpy(&value, unread_.constData() + 4 * index, sizeof value);
        return value;
    }

    QByteArray unread_;
};

/// A socket where programs look for PipeWire, in a folder of its own.
class HostilePipeWire {
public:
    explicit HostilePipeWire(HostileSocket::Conduct conduct)
        : socket_(folder_.filePath(QStringLiteral("pipewire-0")), std::move(conduct)) {
        qputenv("PIPEWIRE_RUNTIME_DIR", QFile::encodeName(folder_.path()));
    }
    HostilePipeWire(const HostilePipeWire &) = delete;
    HostilePipeWire &operator=(const HostilePipeWire &) = delete;
    ~HostilePipeWire() { qunsetenv("PIPEWIRE_RUNTIME_DIR"); }

    bool isConnected() const { return socket_.connections() > 0; }

private:
    QTemporaryDir folder_;
    HostileSocket socket_;
};

/// The true server's bytes, this many of them.
HostileSocket::Conduct cutAfter(qsizetype bytes) {
    const QString server = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/pipewire-0");
    return HostileSocket::between(
        server, [](const QByteArray &piece) { return piece; }, bytes);
}

} // namespace

TEST_F(PipeWireScreenCastsTest,
       a_server_that_names_everything_twice_is_understood_and_nothing_is_lost_track_of) {
    const QString honest = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/pipewire-0");
    const HostilePipeWire stammering(HostileSocket::between(honest, ObjectRepeater()));
    EXPECT_FALSE(casts.anyLive());
    ASSERT_TRUE(waitUntil([&] { return stammering.isConnected(); }));
    qunsetenv("PIPEWIRE_RUNTIME_DIR"); // other programs speak with the honest one
    for (int life = 0; life < 2; ++life) {
        auto cast = source("Screen");
        ASSERT_TRUE(waitUntil([&] { return isListed(""); })) << "a viewer without a source gives up";
        const auto looking = viewer();
        ASSERT_TRUE(waitUntil([&] { return casts.anyLive(); }));
        cast.reset();
        EXPECT_TRUE(waitUntil([&] { return !casts.anyLive(); }));
    }
}

TEST_F(PipeWireScreenCastsTest, a_server_that_means_harm_holds_nothing_and_nobody_up) {
    QByteArray noise(1 << 20, '\0');
    QRandomGenerator generator(4711);
    generator.fillRange(reinterpret_cast<quint32 *>(noise.data()), noise.size() / 4);
    const HostileSocket::Conduct conducts[] = {
        HostileSocket::silent(),
        HostileSocket::pouring(noise),
        HostileSocket::pouring(QByteArray(1 << 16, '\0')),
        cutAfter(0),
        cutAfter(20),
        cutAfter(300),
        cutAfter(1500),
    };
    for (const auto &conduct : conducts) {
        const HostilePipeWire hostile(conduct);
        PipeWireScreenCasts watched;
        ASSERT_TRUE(waitUntil([&] {
            EXPECT_FALSE(watched.anyLive());
            return hostile.isConnected();
        }));
        EXPECT_FALSE(waitUntil([&] { return watched.anyLive(); }, 500));
    }
}

TEST_F(PipeWireScreenCastsTest, a_screen_cast_is_live_while_somebody_looks_at_it) {
    EXPECT_FALSE(casts.anyLive());
    const auto cast = source("Screen");
    ASSERT_TRUE(waitUntil([&] { return isListed(""); }));
    EXPECT_FALSE(casts.anyLive()) << "nobody looks at it yet";
    auto looking = viewer();
    EXPECT_TRUE(waitUntil([&] { return casts.anyLive(); }));
    looking.reset();
    EXPECT_TRUE(waitUntil([&] { return !casts.anyLive(); }));
}

TEST_F(PipeWireScreenCastsTest, a_picture_for_the_task_bar_or_the_dialogue_of_sharing_is_no_screen_cast) {
    for (const char *program : {"plasmashell", "xdg-desktop-portal-kde"}) {
        const auto window = source("Screen");
        ASSERT_TRUE(waitUntil([&] { return isListed(""); }));
        const auto preview = viewerCalled(program);
        ASSERT_TRUE(waitUntil([&] { return isListed("running"); }));
        waitUntil([&] { return casts.anyLive(); }, 500);
        EXPECT_FALSE(casts.anyLive()) << program;
        auto sharing = viewer();
        EXPECT_TRUE(waitUntil([&] { return casts.anyLive(); })) << "somebody else looks too";
        sharing.reset();
        EXPECT_TRUE(waitUntil([&] { return !casts.anyLive(); })) << program;
    }
}

TEST_F(PipeWireScreenCastsTest, a_camera_is_no_screen_cast) {
    const auto camera = source("Camera");
    ASSERT_TRUE(waitUntil([&] { return isListed(""); }));
    const auto looking = viewer();
    ASSERT_TRUE(waitUntil([&] { return isListed("running"); }));
    waitUntil([&] { return casts.anyLive(); }, 500);
    EXPECT_FALSE(casts.anyLive());
}

TEST_F(PipeWireScreenCastsTest, a_server_that_ends_has_no_screen_casts_until_it_is_back) {
    for (int life = 0; life < 2; ++life) {
        const auto cast = source("Screen");
        ASSERT_TRUE(waitUntil([&] { return isListed(""); }));
        const auto looking = viewer();
        ASSERT_TRUE(waitUntil([&] { return casts.anyLive(); }));
        server.kill();
        EXPECT_TRUE(waitUntil([&] { return !casts.anyLive(); }));
        server.start();
    }
}

TEST(PipeWireScreenCasts, without_a_server_there_are_none) {
    qputenv("XDG_RUNTIME_DIR", "/nonexistent");
    qputenv("PIPEWIRE_RUNTIME_DIR", "/nonexistent");
    PipeWireScreenCasts casts;
    EXPECT_FALSE(casts.anyLive());
    EXPECT_FALSE(casts.anyLive());
}

} // namespace pavonel::test
