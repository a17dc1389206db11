#include "EndToEnd/WaylandPlaces.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QJsonArray>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// What the built program notices of the user and of other programs, as its status tells.
template <class Place> struct SensorsOnWayland : testing::Test {
    void start(QJsonObject settings) {
        settings.insert(QStringLiteral("microInterval"), interval);
        desktop.store(settings);
        desktop.startProgram();
    }
    int remaining() { return desktop.status()[QStringLiteral("next")][QStringLiteral("remaining")].toInt(); }
    bool counts() {
        const int now = remaining();
        const int before = now > 0 ? now : interval; // it may not run yet
        return waitUntil([&] {
            const int left = remaining();
            return 0 < left && left < before;
        });
    }
    /// Empty for none.
    bool isHeldFor(const QString &reason) {
        return waitUntil([&] {
            const QJsonObject status = desktop.status();
            return status[QStringLiteral("running")].toBool() &&
                   status[QStringLiteral("hold")].toString() == reason;
        });
    }
    std::unique_ptr<OtherWindow> open(const QString &name,
                                      OtherWindow::State state = OtherWindow::State::normal) {
        auto window = std::make_unique<OtherWindow>(desktop.compositor().environment(), name, state);
        EXPECT_TRUE(window->becomesActive());
        return window;
    }
    void install(const QString &name) {
        const QString folder =
            desktop.environment().value(QStringLiteral("XDG_DATA_HOME")) + QStringLiteral("/applications");
        QDir().mkpath(folder);
        writeFile(folder + u'/' + name + QStringLiteral(".desktop"),
                  "[Desktop Entry]\nType=Application\nName=Editor\nExec=some-editor\n");
    }

    static constexpr int interval = 3600;
    const QJsonObject neverAway{{QStringLiteral("naturalBreakEnabled"), false}};
    Place place;
    WaylandDesktop &desktop = place.desktop;
};

using PlacesWithSensors = testing::Types<OnSway, OnSwayWithoutIpc, OnKWin>;
TYPED_TEST_SUITE(SensorsOnWayland, PlacesWithSensors, NameOfPlace);

TYPED_TEST(SensorsOnWayland, being_away_for_as_long_as_a_break_is_one) {
    this->start({{QStringLiteral("idleResetSeconds"), 6}, {QStringLiteral("microDuration"), 8}});
    EXPECT_TRUE(this->counts());
    EXPECT_TRUE(this->isHeldFor(QStringLiteral("away")));
    EXPECT_TRUE(waitUntil([&] { return this->remaining() == this->interval; }));
    this->desktop.compositor().input().press(VirtualInput::a);
    EXPECT_TRUE(this->isHeldFor({}));
    EXPECT_TRUE(this->counts());
}

TYPED_TEST(SensorsOnWayland, a_fullscreen_window_holds_while_it_is_in_front) {
    auto player = this->open(QStringLiteral("player"), OtherWindow::State::fullscreen);
    this->start(this->neverAway);
    EXPECT_TRUE(this->isHeldFor(QStringLiteral("fullscreen")));
    player.reset();
    EXPECT_TRUE(this->isHeldFor({}));
    player = this->open(QStringLiteral("player"), OtherWindow::State::fullscreen);
    EXPECT_TRUE(this->isHeldFor(QStringLiteral("fullscreen")));
}

TYPED_TEST(SensorsOnWayland, a_window_that_only_has_its_screen_to_itself_does_not_hold) {
    const auto other = this->open(QStringLiteral("other"));
    this->start(this->neverAway);
    EXPECT_TRUE(this->counts() && this->counts() && this->counts());
    EXPECT_TRUE(this->isHeldFor({}));
}

TYPED_TEST(SensorsOnWayland, a_focus_application_holds_while_it_is_in_front) {
    const QString editor = QStringLiteral("org.example.Editor");
    this->install(editor);
    QJsonObject settings = this->neverAway;
    settings.insert(QStringLiteral("deepFocusApps"), QJsonArray{editor});
    this->start(settings);
    EXPECT_TRUE(this->counts());
    const auto window = this->open(editor);
    EXPECT_TRUE(this->isHeldFor(QStringLiteral("deepFocus")));
    const auto other = this->open(QStringLiteral("other"));
    EXPECT_TRUE(this->isHeldFor({}));
}

struct SensorsOnKWin : SensorsOnWayland<OnKWin> {
    bool hasScript() {
        auto call = QDBusMessage::createMethodCall(
            QStringLiteral("org.kde.KWin"), QStringLiteral("/Scripting"),
            QStringLiteral("org.kde.kwin.Scripting"), QStringLiteral("isScriptLoaded"));
        call << QStringLiteral("pavonel");
        return outsider.call(call).arguments().value(0).toBool();
    }
    ~SensorsOnKWin() override { QDBusConnection::disconnectFromBus(QStringLiteral("outsider")); }

    QDBusConnection outsider = QDBusConnection::connectToBus(static_cast<KWin &>(desktop.compositor()).bus(),
                                                             QStringLiteral("outsider"));
};

TEST_F(SensorsOnKWin, leaves_no_script_behind) {
    start(neverAway);
    ASSERT_TRUE(waitUntil([this] { return hasScript(); }));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_TRUE(waitUntil([this] { return !hasScript(); }));
}

} // namespace

} // namespace pavonel::test
