#include "Platform/Linux/Bus/PortalAppearance.h"

#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>

#include <gtest/gtest.h>

namespace pavonel::test {

struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Colour &colour) {
    argument.beginStructure();
    argument << colour.red << colour.green << colour.blue;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Colour &colour) {
    argument.beginStructure();
    argument >> colour.red >> colour.green >> colour.blue;
    argument.endStructure();
    return argument;
}

} // namespace pavonel::test
Q_DECLARE_METATYPE(pavonel::test::Colour)

namespace pavonel::test {

namespace {

const auto common = QStringLiteral("org.freedesktop.appearance");
const auto gnome = QStringLiteral("org.gnome.desktop.interface");
const auto kde = QStringLiteral("org.kde.kdeglobals.KDE");

/// A settings portal that says what a test has put into it.
class Portal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Portal(const QString &address)
        : bus_(QDBusConnection::connectToBus(address, QStringLiteral("portal"))) {
        qDBusRegisterMetaType<DesktopSettings>();
        qDBusRegisterMetaType<Colour>();
        bus_.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    }
    ~Portal() override { QDBusConnection::disconnectFromBus(QStringLiteral("portal")); }

    void appear() { EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop"))); }
    void vanish() { EXPECT_TRUE(bus_.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"))); }

    template <class Value> void set(const QString &space, const QString &key, const Value &value) {
        settings[space][key] = QVariant::fromValue(value);
    }
    template <class Value> void change(const QString &space, const char *key, const Value &value) {
        Q_EMIT SettingChanged(space, QString::fromLatin1(key), QDBusVariant(QVariant::fromValue(value)));
    }

    DesktopSettings settings;
    QStringList asked;
    bool deaf = false;
    bool refuses = false;

    Q_SIGNAL void SettingChanged(const QString &space, const QString &key, const QDBusVariant &value);

    Q_SLOT pavonel::DesktopSettings ReadAll(const QStringList &spaces) {
        asked = spaces;
        if (deaf)
            setDelayedReply(true);
        if (refuses)
            sendErrorReply(QDBusError::Failed, QStringLiteral("The settings cannot be read."));
        DesktopSettings answer;
        for (const QString &space : spaces) {
            if (settings.contains(space))
                answer[space] = settings[space];
        }
        return answer;
    }

private:
    QDBusConnection bus_;
};

class PortalAppearanceTest : public testing::Test {
protected:
    ~PortalAppearanceTest() override { QDBusConnection::disconnectFromBus(QStringLiteral("appearance")); }

    std::unique_ptr<PortalAppearance> makeAppearance() {
        auto appearance = std::make_unique<PortalAppearance>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("appearance")));
        listening = appearance->onChange([this] { ++changes; });
        return appearance;
    }
    /// With a portal that has answered.
    std::unique_ptr<PortalAppearance> makeInformed() {
        portal.appear();
        auto appearance = makeAppearance();
        EXPECT_TRUE(waitUntil([this] { return !portal.asked.isEmpty(); }));
        settle(*appearance);
        return appearance;
    }
    /// A change that is seen after all that was told before it.
    void settle(PortalAppearance &appearance) {
        const bool reduced = appearance.wishes().reducedMotion;
        portal.change(common, "reduced-motion", reduced ? 0u : 1u);
        EXPECT_TRUE(waitUntil([&] { return appearance.wishes().reducedMotion != reduced; }));
        portal.change(common, "reduced-motion", reduced ? 1u : 0u);
        EXPECT_TRUE(waitUntil([&] { return appearance.wishes().reducedMotion == reduced; }));
        changes = 0;
    }
    static void setPalette(const QColor &window) {
        QPalette palette;
        palette.setColor(QPalette::Window, window);
        QGuiApplication::setPalette(palette);
    }

    MessageBus bus;
    Portal portal{bus.address()};
    Appearance::Listening listening;
    int changes = 0;
};

} // namespace

TEST_F(PortalAppearanceTest, dark_and_light_are_the_users_choice_whatever_the_palette) {
    setPalette(Qt::white);
    portal.set(common, QStringLiteral("color-scheme"), 1u);
    const auto appearance = makeInformed();
    EXPECT_TRUE(appearance->wishes().dark);
    setPalette(Qt::black);
    portal.change(common, "color-scheme", 2u);
    EXPECT_TRUE(waitUntil([&] { return !appearance->wishes().dark; }));
}

TEST_F(PortalAppearanceTest, without_a_choice_the_palette_decides) {
    setPalette(Qt::white);
    portal.set(common, QStringLiteral("color-scheme"), 0u);
    const auto appearance = makeInformed();
    EXPECT_FALSE(appearance->wishes().dark);
    setPalette(QColor(40, 40, 40));
    EXPECT_TRUE(appearance->wishes().dark || waitUntil([&] { return appearance->wishes().dark; }));
    EXPECT_EQ(changes, 1);
}

TEST_F(PortalAppearanceTest, without_a_portal_the_palette_decides) {
    setPalette(QColor(40, 40, 40));
    const auto appearance = makeAppearance();
    EXPECT_EQ(appearance->wishes(), (AppearanceWishes{.dark = true, .reducedMotion = false, .accent = {}}));
    setPalette(Qt::white);
    EXPECT_TRUE(waitUntil([&] { return !appearance->wishes().dark; }));
}

TEST_F(PortalAppearanceTest, with_one_that_refuses_the_palette_decides_until_a_signal_tells_more) {
    setPalette(Qt::white);
    portal.refuses = true;
    portal.set(common, QStringLiteral("color-scheme"), 1u);
    const auto appearance = makeInformed();
    EXPECT_FALSE(appearance->wishes().dark);
    portal.change(common, "color-scheme", 1u);
    EXPECT_TRUE(waitUntil([&] { return appearance->wishes().dark; }));
}

TEST_F(PortalAppearanceTest, one_that_refuses_after_a_restart_makes_nothing_of_the_earlier_ones_word_last) {
    setPalette(Qt::white);
    portal.set(common, QStringLiteral("color-scheme"), 1u);
    const auto appearance = makeInformed();
    EXPECT_TRUE(appearance->wishes().dark);
    portal.vanish();
    portal.refuses = true;
    portal.appear();
    EXPECT_TRUE(waitUntil([&] { return !appearance->wishes().dark; }));
}

TEST_F(PortalAppearanceTest, without_a_bus_the_palette_decides) {
    setPalette(QColor(40, 40, 40));
    PortalAppearance appearance(QDBusConnection(QStringLiteral("no such bus")));
    EXPECT_TRUE(appearance.wishes().dark);
}

TEST_F(PortalAppearanceTest, the_accent_is_the_colour_that_the_user_chose) {
    portal.set(common, QStringLiteral("accent-color"), Colour{1.0, 0.5, 0.0});
    const auto appearance = makeInformed();
    EXPECT_EQ(appearance->wishes().accent, 0xFF8000u);
    portal.change(common, "accent-color", Colour{0.0, 0.0, 1.0});
    EXPECT_TRUE(waitUntil([&] { return appearance->wishes().accent == 0x0000FFu; }));
}

TEST_F(PortalAppearanceTest, an_accent_out_of_range_is_none) {
    portal.set(common, QStringLiteral("accent-color"), Colour{0.1, 0.2, 0.3});
    const auto appearance = makeInformed();
    EXPECT_TRUE(appearance->wishes().accent);
    portal.change(common, "accent-color", Colour{-1, -1, -1});
    EXPECT_TRUE(waitUntil([&] { return !appearance->wishes().accent; }));
}

TEST_F(PortalAppearanceTest, reduced_motion_is_a_wish_of_its_own) {
    const auto appearance = makeInformed();
    EXPECT_FALSE(appearance->wishes().reducedMotion);
    portal.change(common, "reduced-motion", 1u);
    EXPECT_TRUE(waitUntil([&] { return appearance->wishes().reducedMotion; }));
}

TEST_F(PortalAppearanceTest, animations_switched_off_in_gnome_mean_reduced_motion) {
    portal.set(gnome, QStringLiteral("enable-animations"), true);
    const auto appearance = makeInformed();
    EXPECT_FALSE(appearance->wishes().reducedMotion);
    portal.change(gnome, "enable-animations", false);
    EXPECT_TRUE(waitUntil([&] { return appearance->wishes().reducedMotion; }));
}

TEST_F(PortalAppearanceTest, animations_without_duration_in_kde_mean_reduced_motion) {
    portal.set(kde, QStringLiteral("AnimationDurationFactor"), QStringLiteral("0.5"));
    const auto appearance = makeInformed();
    EXPECT_FALSE(appearance->wishes().reducedMotion);
    portal.change(kde, "AnimationDurationFactor", QStringLiteral("0"));
    EXPECT_TRUE(waitUntil([&] { return appearance->wishes().reducedMotion; }));
}

TEST_F(PortalAppearanceTest, what_changes_nothing_is_not_told) {
    setPalette(Qt::white);
    portal.set(common, QStringLiteral("color-scheme"), 1u);
    const auto appearance = makeInformed();
    portal.change(common, "color-scheme", 1u);
    portal.change(common, "contrast", 1u);
    portal.change(gnome, "clock-format", QStringLiteral("24h"));
    portal.change(QStringLiteral("org.example"), "color-scheme", 2u);
    portal.change(common, "color-scheme", 2u);
    EXPECT_TRUE(waitUntil([&] { return !appearance->wishes().dark; }));
    EXPECT_EQ(changes, 1);
}

TEST_F(PortalAppearanceTest, nonsense_is_no_wish) {
    setPalette(Qt::white);
    portal.set(common, QStringLiteral("color-scheme"), QStringLiteral("dark"));
    portal.set(common, QStringLiteral("accent-color"), 7u);
    portal.set(common, QStringLiteral("reduced-motion"), 9u);
    portal.set(kde, QStringLiteral("AnimationDurationFactor"), QStringLiteral("fast"));
    const auto appearance = makeInformed();
    EXPECT_EQ(appearance->wishes(), AppearanceWishes{});
}

TEST_F(PortalAppearanceTest, a_portal_that_comes_later_is_asked) {
    setPalette(Qt::white);
    portal.set(common, QStringLiteral("color-scheme"), 1u);
    const auto appearance = makeAppearance();
    portal.appear();
    EXPECT_TRUE(waitUntil([&] { return appearance->wishes().dark; }));
}

TEST_F(PortalAppearanceTest, a_portal_that_restarts_is_asked_again) {
    setPalette(Qt::white);
    portal.set(common, QStringLiteral("color-scheme"), 1u);
    const auto appearance = makeInformed();
    portal.vanish();
    portal.set(common, QStringLiteral("color-scheme"), 2u);
    portal.appear();
    EXPECT_TRUE(waitUntil([&] { return !appearance->wishes().dark; }));
}

TEST_F(PortalAppearanceTest, a_portal_that_never_answers_holds_nobody_up) {
    setPalette(Qt::white);
    portal.deaf = true;
    portal.appear();
    const auto appearance = makeAppearance();
    EXPECT_FALSE(appearance->wishes().dark);
    EXPECT_TRUE(waitUntil([this] { return !portal.asked.isEmpty(); }));
    portal.change(common, "color-scheme", 1u);
    EXPECT_TRUE(waitUntil([&] { return appearance->wishes().dark; })) << "its signals still count";
}

} // namespace pavonel::test

#include "PortalAppearanceTest.moc"
