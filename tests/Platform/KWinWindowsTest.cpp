#include "Platform/Linux/KWin/KWinWindows.h"

#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QFile>

#include <gtest/gtest.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

const auto kwinName = QStringLiteral("org.kde.KWin");
const auto windowsPath = QStringLiteral("/org/pavonel/Pavonel/KWin");

} // namespace

/// As far as scripts need one; it writes down what it is asked.
class FakeKWin final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kwin.Scripting")

public:
    QStringList asked;
    QByteArray script;
    int refusals = 0; ///< So often a script is not taken.

public Q_SLOTS:
    bool unloadScript(const QString &name) {
        asked.append(QStringLiteral("unload ") + name);
        return false;
    }
    int loadScript(const QString &file, const QString &name) {
        asked.append(QStringLiteral("load ") + name);
        QFile opened(file);
        if (opened.open(QFile::ReadOnly))
            script = opened.readAll();
        return refusals-- > 0 ? -1 : 3;
    }
};

class FakeKWinScript final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kwin.Script")

public:
    int runs = 0;

public Q_SLOTS:
    void run() { ++runs; }
};

namespace {

class KWinWindowsTest : public testing::Test {
protected:
    KWinWindowsTest() { startKWin(); }
    ~KWinWindowsTest() override {
        windows.reset();
        for (const char *name : {"pavonel", "kwin", "stranger"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }
    QDBusConnection connectTo(const char *name) {
        return QDBusConnection::connectToBus(bus.address(), QString::fromLatin1(name));
    }
    void startKWin() {
        kwinBus.registerObject(QStringLiteral("/Scripting"), &kwin, QDBusConnection::ExportAllSlots);
        kwinBus.registerObject(QStringLiteral("/3"), &plasma5, QDBusConnection::ExportAllSlots);
        kwinBus.registerObject(QStringLiteral("/Scripting/Script3"), &plasma6,
                               QDBusConnection::ExportAllSlots);
        EXPECT_TRUE(kwinBus.registerService(kwinName));
    }
    bool runs(int times) {
        return waitUntil([&] {
            windows->front();
            return plasma5.runs == times;
        });
    }
    static QDBusMessage front(const QString &to, const QVariantList &arguments) {
        auto message = QDBusMessage::createMethodCall(to, windowsPath, QStringLiteral("org.pavonel.KWin"),
                                                      QStringLiteral("Front"));
        message.setArguments(arguments);
        return message;
    }
    static void call(const QDBusConnection &from, const QString &to, const QVariantList &arguments) {
        from.send(front(to, arguments));
    }
    /// As the script does.
    void tell(const char *json) { call(kwinBus, ours.baseService(), {QString::fromUtf8(json)}); }
    bool isInFront(const char *application) {
        return waitUntil([&] {
            const auto front = windows->front();
            return front ? front->windowClass == QLatin1StringView(application) : *application == '\0';
        });
    }

    MessageBus bus;
    QDBusConnection kwinBus = connectTo("kwin");
    QDBusConnection ours = connectTo("pavonel");
    FakeKWin kwin;
    FakeKWinScript plasma5;
    FakeKWinScript plasma6;
    std::unique_ptr<KWinWindows> windows = std::make_unique<KWinWindows>(ours);
};

constexpr char editor[] = R"({"id":"{1}","application":"editor","instance":"one","process":4321,
    "isFullscreen":false,"x":0,"y":0,"width":800,"height":600})";

TEST_F(KWinWindowsTest, brings_its_script_in_place_of_an_old_one_when_it_is_first_asked) {
    EXPECT_TRUE(waitUntil([&] { return windows->isTelling(); }));
    EXPECT_EQ(kwin.asked, QStringList());
    EXPECT_TRUE(runs(1));
    EXPECT_TRUE(waitUntil([&] { return plasma6.runs == 1; })) << "a Plasma 6 has it at another place";
    EXPECT_EQ(kwin.asked, (QStringList{QStringLiteral("unload pavonel"), QStringLiteral("load pavonel")}));
    EXPECT_TRUE(kwin.script.contains(ours.baseService().toUtf8()));
}

TEST_F(KWinWindowsTest, tries_again_while_the_old_script_is_still_there) {
    kwin.refusals = 2;
    EXPECT_TRUE(runs(1));
    EXPECT_EQ(kwin.asked.count(QStringLiteral("load pavonel")), 3);
}

TEST_F(KWinWindowsTest, tells_what_the_script_says) {
    ASSERT_TRUE(runs(1));
    tell(editor);
    ASSERT_TRUE(isInFront("editor"));
    EXPECT_EQ(windows->front()->processId, 4321);
    EXPECT_EQ(windows->front()->windowInstance, QStringLiteral("one"));
    EXPECT_TRUE(windows->fullscreen().empty());
    tell(R"({"id":"{2}","application":"player","process":4322,"isFullscreen":true,
        "x":1280,"y":0,"width":1280,"height":800})");
    ASSERT_TRUE(isInFront("player"));
    ASSERT_EQ(windows->fullscreen().size(), 1U);
    EXPECT_EQ(windows->fullscreen().front().owner, 4322);
    EXPECT_EQ(windows->fullscreen().front().middle, QPointF(1920, 400));
    tell("{}");
    EXPECT_TRUE(isInFront(""));
    EXPECT_TRUE(windows->fullscreen().empty());
}

TEST_F(KWinWindowsTest, a_window_of_our_own_is_not_in_front) {
    ASSERT_TRUE(runs(1));
    tell(editor);
    ASSERT_TRUE(isInFront("editor"));
    tell(qPrintable(QStringLiteral(R"({"id":"{3}","application":"x","process":%1})").arg(::getpid())));
    EXPECT_TRUE(isInFront(""));
}

TEST_F(KWinWindowsTest, believes_nobody_but_kwin) {
    ASSERT_TRUE(runs(1));
    tell(editor);
    ASSERT_TRUE(isInFront("editor"));
    const QDBusConnection stranger = connectTo("stranger");
    const QString game =
        QStringLiteral(R"({"id":"{2}","application":"game","process":99,"isFullscreen":true})");
    for (const QDBusConnection &caller : {stranger, ours}) {
        const QDBusPendingCall answer = caller.asyncCall(front(ours.baseService(), {game}));
        ASSERT_TRUE(waitUntil([&] { return answer.isFinished(); }));
        EXPECT_EQ(answer.error().type(), QDBusError::AccessDenied);
    }
    EXPECT_EQ(windows->front()->windowClass, QStringLiteral("editor"));
}

TEST_F(KWinWindowsTest, takes_what_makes_no_sense_for_nothing) {
    ASSERT_TRUE(runs(1));
    for (const char *nonsense : {"", "no json", "[]", "7", "null"}) {
        tell(editor);
        ASSERT_TRUE(isInFront("editor"));
        tell(nonsense);
        EXPECT_TRUE(isInFront("")) << nonsense;
    }
    tell(editor);
    ASSERT_TRUE(isInFront("editor"));
    call(kwinBus, ours.baseService(), {});
    call(kwinBus, ours.baseService(), {1, QStringLiteral("x")});
    tell(
        R"({"application":"game","process":1,"isFullscreen":true,"x":null,"y":0,"width":-5,"height":1e300})");
    ASSERT_TRUE(isInFront("game"));
    EXPECT_EQ(windows->front()->processId, 0) << "no program of a user's is process 1";
    ASSERT_EQ(windows->fullscreen().size(), 1U);
    EXPECT_FALSE(windows->fullscreen().front().middle);
}

TEST_F(KWinWindowsTest, brings_its_script_again_to_a_kwin_that_was_restarted) {
    ASSERT_TRUE(runs(1));
    tell(editor);
    ASSERT_TRUE(isInFront("editor"));
    kwinBus.unregisterService(kwinName);
    EXPECT_TRUE(waitUntil([&] { return !windows->isTelling(); }));
    EXPECT_FALSE(windows->front());
    startKWin();
    EXPECT_TRUE(runs(2));
}

TEST_F(KWinWindowsTest, takes_its_script_out_at_the_end) {
    ASSERT_TRUE(runs(1));
    windows.reset();
    EXPECT_TRUE(waitUntil([&] { return kwin.asked.count(QStringLiteral("unload pavonel")) == 2; }));
}

} // namespace

} // namespace pavonel::test

#include "KWinWindowsTest.moc"
