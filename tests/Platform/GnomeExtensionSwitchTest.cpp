#include "Platform/Linux/Gnome/GnomeExtensionSwitch.h"

#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "support/MessageBus.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDBusAbstractAdaptor>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using namespace Qt::StringLiterals;

constexpr double on = 1;
constexpr double off = 2;
constexpr double error = 3;
constexpr double outOfDate = 4;

/// What of the Shell knows about extensions.
class Extensions : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Shell.Extensions")
    Q_PROPERTY(bool UserExtensionsEnabled MEMBER anyAllowed)

public:
    explicit Extensions(QObject *object) : QDBusAbstractAdaptor(object) {}

    QVariantMap told; ///< Empty for one that the Shell has not loaded.
    bool anyAllowed = true;
    bool obeys = true;
    QStringList asked;

    Q_SIGNAL void ExtensionStateChanged(const QString &uuid, const QVariantMap &told);

    Q_SLOT QVariantMap GetExtensionInfo(const QString &uuid) {
        asked.append(uuid);
        return told;
    }
    Q_SLOT bool EnableExtension(const QString &uuid) { return put(uuid, on); }
    Q_SLOT bool DisableExtension(const QString &uuid) { return put(uuid, off); }

private:
    bool put(const QString &uuid, double state) {
        asked.append(uuid);
        if (!obeys)
            return false;
        told[u"state"_s] = state;
        Q_EMIT ExtensionStateChanged(uuid, told);
        return true;
    }
};

class GnomeExtensionSwitchTest : public testing::Test {
protected:
    GnomeExtensionSwitchTest() { qputenv("XDG_DATA_HOME", data.path().toLocal8Bit()); }
    ~GnomeExtensionSwitchTest() override {
        for (const auto *each : {"shell", "pavonel"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(each));
        qunsetenv("XDG_DATA_HOME");
    }
    QDBusConnection connection(const char *as) {
        return QDBusConnection::connectToBus(bus.address(), QString::fromLatin1(as));
    }
    void startShell() {
        QDBusConnection shell = connection("shell");
        shell.registerObject(u"/org/gnome/Shell"_s, &object);
        ASSERT_TRUE(shell.registerService(u"org.gnome.Shell"_s));
    }
    void tell(const QVariant &state) {
        extensions.told = {{u"state"_s, state}};
        Q_EMIT extensions.ExtensionStateChanged(u"pavonel@pavonel.org"_s, extensions.told);
    }
    bool becomes(bool wanted) {
        return waitUntil([&] { return isShownOn == wanted; });
    }
    bool says(const QString &words) {
        return waitUntil([&] { return shownLimitation.contains(words); });
    }
    bool saysNothing() {
        return waitUntil([&] { return shownLimitation.isEmpty(); });
    }
    /// As the settings do when they open, and when they are told of a change.
    void open() {
        asExtension.onChange([this] { show(); });
        EXPECT_TRUE(asExtension.isPossible());
        show();
    }
    void show() {
        isShownOn = asExtension.isOn();
        shownLimitation = asExtension.limitation();
    }

    QTemporaryDir data;
    MessageBus bus;
    QObject object;
    Extensions extensions{&object};
    GnomeExtensionSwitch asExtension{connection("pavonel"),
                                     std::make_shared<GnomeExtension>(connection("pavonel"))};
    bool isShownOn = false;
    QString shownLimitation;
};

} // namespace

TEST_F(GnomeExtensionSwitchTest, is_offered_only_where_gnome_shell_is) {
    EXPECT_FALSE(asExtension.isPossible());
    startShell();
    EXPECT_TRUE(asExtension.isPossible());
}

TEST_F(GnomeExtensionSwitchTest, shows_what_the_shell_says_and_follows_it) {
    startShell();
    tell(on);
    open();
    EXPECT_TRUE(becomes(true));
    EXPECT_EQ(shownLimitation, QString());
    EXPECT_EQ(extensions.asked.back(), u"pavonel@pavonel.org"_s);
    tell(off);
    EXPECT_TRUE(becomes(false));
    tell(on);
    EXPECT_TRUE(becomes(true));
}

TEST_F(GnomeExtensionSwitchTest, switches_it_on_and_off_and_stays_as_it_was_put_meanwhile) {
    startShell();
    tell(off);
    open();
    ASSERT_TRUE(waitUntil([&] { return !extensions.asked.isEmpty(); }));
    for (const bool wanted : {true, false}) {
        asExtension.isPossible(); // asks, and the answer is of before
        asExtension.setOn(wanted);
        EXPECT_TRUE(waitUntil([&] {
            EXPECT_EQ(isShownOn, wanted);
            return extensions.told[u"state"_s] == (wanted ? on : off);
        }));
    }
}

TEST_F(GnomeExtensionSwitchTest, goes_back_where_the_shell_does_not_do_it) {
    startShell();
    tell(off);
    open();
    extensions.obeys = false;
    asExtension.setOn(true);
    EXPECT_TRUE(isShownOn);
    EXPECT_TRUE(becomes(false));
}

TEST_F(GnomeExtensionSwitchTest, says_what_to_do_where_the_shell_has_not_loaded_it) {
    startShell();
    open();
    EXPECT_TRUE(says(u"not installed"_s));
    writeFile(data.filePath(u"gnome-shell/extensions/pavonel@pavonel.org/metadata.json"_s), "{}");
    open();
    EXPECT_TRUE(says(u"next login"_s));
}

TEST_F(GnomeExtensionSwitchTest, says_why_the_shell_does_not_run_it) {
    startShell();
    tell(error);
    open();
    EXPECT_TRUE(says(u"refuses"_s));
    tell(off);
    EXPECT_TRUE(saysNothing());
    tell(outOfDate);
    EXPECT_TRUE(says(u"refuses"_s));
    tell(off);
    EXPECT_TRUE(saysNothing());
    extensions.anyAllowed = false;
    tell(off);
    EXPECT_TRUE(says(u"all extensions are switched off"_s));
}

TEST_F(GnomeExtensionSwitchTest, a_shell_that_tells_nonsense_has_none) {
    startShell();
    open();
    for (const QVariant &nonsense : {QVariant(u"on"_s), QVariant(QVariantList{1, 2})}) {
        tell(on);
        EXPECT_TRUE(becomes(true));
        tell(nonsense);
        EXPECT_TRUE(becomes(false));
    }
}

} // namespace pavonel::test

#include "GnomeExtensionSwitchTest.moc"
