#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "Platform/Linux/Gnome/GnomeHotKeys.h"
#include "Platform/Linux/Gnome/accelerators.h"
#include "Platform/Linux/Gnome/customKeyBindings.h"
#include "Platform/Qt/QtMainLoop.h"
#include "support/ChildProcess.h"
#include "support/MessageBus.h"
#include "support/files.h"
#include "support/keys.h"
#include "support/waitUntil.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// As much of GNOME's as is needed: no test machine has to have it.
const char schemas[] = R"(<schemalist>
  <schema id="org.gnome.settings-daemon.plugins.media-keys" path="/org/gnome/settings-daemon/plugins/media-keys/">
    <key name="custom-keybindings" type="as"><default>[]</default></key>
    <key name="screensaver" type="as"><default>['&lt;Super&gt;l']</default></key>
  </schema>
  <schema id="org.gnome.settings-daemon.plugins.media-keys.custom-keybinding">
    <key name="name" type="s"><default>''</default></key>
    <key name="binding" type="s"><default>''</default></key>
    <key name="command" type="s"><default>''</default></key>
  </schema>
</schemalist>)";

const auto schema = u"org.gnome.settings-daemon.plugins.media-keys"_s;
const auto folder = u"/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/"_s;
const auto ours = folder + u"pavonel-take-micro-break/"_s;
const auto somebodys = folder + u"custom0/"_s;

const CustomKeyBinding breakNow{u"take-micro-break"_s, u"Take a micro break"_s, u"<Control><Alt><Super>b"_s};
const CustomKeyBinding skip{u"skip"_s, u"Skip the break"_s, u"<Control><Alt><Super>s"_s};

/// Of a Shell that is locked.
class ScreenSaver : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.ScreenSaver")

public:
    bool isActive = true;
    int questions = 0;

    Q_SIGNAL void ActiveChanged(bool isActive);
    Q_SLOT bool GetActive() {
        ++questions;
        return isActive;
    }
};

/// GNOME's settings, and nobody who heeds them.
class GnomeKeyBindings : public testing::Test {
protected:
    GnomeKeyBindings() {
        writeFile(home.filePath(u"test.gschema.xml"_s), schemas);
        EXPECT_EQ(ChildProcess::run(u"glib-compile-schemas"_s, {home.path()}).status, 0);
        qputenv("GSETTINGS_SCHEMA_DIR", home.path().toLocal8Bit());
        qputenv("GSETTINGS_BACKEND", "keyfile");
        qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    }
    ~GnomeKeyBindings() override {
        for (const char *each : {"GSETTINGS_SCHEMA_DIR", "GSETTINGS_BACKEND", "XDG_CONFIG_HOME"})
            qunsetenv(each);
    }
    static QString settings(const QStringList &words) {
        const auto ended = ChildProcess::run(u"gsettings"_s, words);
        EXPECT_EQ(ended.status, 0) << words.join(u' ').toStdString() << ended.errors.toStdString();
        return QString::fromUtf8(ended.output).trimmed();
    }
    static QString list() { return settings({u"get"_s, schema, u"custom-keybindings"_s}); }
    static QString valueOf(const QString &path, const QString &key) {
        return settings({u"get"_s, schema + u".custom-keybinding:"_s + path, key});
    }
    static void addSomebodys(const QString &binding) {
        settings({u"set"_s, schema, u"custom-keybindings"_s, u"['%1']"_s.arg(somebodys)});
        settings({u"set"_s, schema + u".custom-keybinding:"_s + somebodys, u"binding"_s, binding});
    }

    QTemporaryDir home;
};

} // namespace

TEST_F(GnomeKeyBindings, stand_beside_those_of_others_and_go_without_a_trace) {
    addSomebodys(u"<Super>x"_s);
    const auto result = keepCustomKeyBindings({breakNow, skip});
    EXPECT_TRUE(result.areKept);
    EXPECT_FALSE(result.wereOurs);
    EXPECT_EQ(result.taken, QStringList());
    EXPECT_EQ(list(), u"['%1', '%2', '%3pavonel-skip/']"_s.arg(somebodys, ours, folder));
    EXPECT_EQ(valueOf(ours, u"name"_s), u"'Pavonel: Take a micro break'"_s);
    EXPECT_EQ(valueOf(ours, u"binding"_s), u"'<Control><Alt><Super>b'"_s);
    EXPECT_EQ(valueOf(ours, u"command"_s), u"'gapplication action org.pavonel.Pavonel take-micro-break'"_s);
    EXPECT_TRUE(keepCustomKeyBindings({}).wereOurs);
    EXPECT_EQ(list(), u"['%1']"_s.arg(somebodys));
    EXPECT_EQ(valueOf(somebodys, u"binding"_s), u"'<Super>x'"_s);
    for (const auto &key : {u"name"_s, u"binding"_s, u"command"_s})
        EXPECT_EQ(valueOf(ours, key), u"''"_s);
}

TEST_F(GnomeKeyBindings, that_a_killed_run_left_are_taken_over_and_not_doubled) {
    keepCustomKeyBindings({breakNow, skip});
    const auto result = keepCustomKeyBindings({breakNow});
    EXPECT_TRUE(result.areKept && result.wereOurs);
    EXPECT_EQ(result.taken, QStringList());
    EXPECT_EQ(list(), u"['%1']"_s.arg(ours));
}

TEST_F(GnomeKeyBindings, leave_alone_what_a_custom_key_binding_of_the_user_has) {
    addSomebodys(u"<Super><Primary><Mod1>B"_s);
    const auto result = keepCustomKeyBindings({breakNow, skip});
    EXPECT_EQ(result.taken, QStringList{breakNow.accelerator});
    EXPECT_EQ(list(), u"['%1', '%2pavonel-skip/']"_s.arg(somebodys, folder));
}

TEST_F(GnomeKeyBindings, leave_alone_what_the_desktop_itself_has) {
    settings({u"set"_s, schema, u"screensaver"_s, u"['<Super>l', '<Super><Alt><Ctrl>s']"_s});
    EXPECT_EQ(keepCustomKeyBindings({breakNow, skip}).taken, QStringList{skip.accelerator});
    EXPECT_EQ(list(), u"['%1']"_s.arg(ours));
}

TEST_F(GnomeKeyBindings, are_not_kept_where_nobody_keeps_settings) {
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", home.path().toLocal8Bit());
    EXPECT_FALSE(keepCustomKeyBindings({breakNow}).areKept);
    qputenv("PATH", path);
}

TEST_F(GnomeKeyBindings, stand_in_for_the_extension_while_it_is_away) {
    MessageBus bus;
    auto shell = QDBusConnection::connectToBus(bus.address(), u"shell"_s);
    auto pavonel = QDBusConnection::connectToBus(bus.address(), u"pavonel"_s);
    QtMainLoop loop;
    {
        GnomeHotKeys keys(pavonel, std::make_shared<GnomeExtension>(pavonel), loop);
        const auto registration = keys.registerKey(keyB, controlOptionCommand, 1);
        EXPECT_TRUE(waitUntil([] { return list() == u"['%1']"_s.arg(ours); }));
        EXPECT_TRUE(waitUntil([&] { return !keys.limitation().isEmpty(); })) << "nobody heeds them";
        EXPECT_TRUE(shell.registerService(u"org.gnome.SettingsDaemon.MediaKeys"_s));
        EXPECT_EQ(keys.limitation(), QString());
        EXPECT_TRUE(shell.registerService(u"org.pavonel.Shell"_s));
        EXPECT_TRUE(waitUntil([] { return list() == u"@as []"_s || list() == u"[]"_s; }));
        EXPECT_TRUE(shell.unregisterService(u"org.pavonel.Shell"_s));
        EXPECT_TRUE(waitUntil([] { return list() == u"['%1']"_s.arg(ours); }));
    }
    for (const auto &each : {u"shell"_s, u"pavonel"_s})
        QDBusConnection::disconnectFromBus(each);
}

TEST_F(GnomeKeyBindings, wait_while_the_screen_is_locked_for_then_extensions_are_away) {
    MessageBus bus;
    auto there = QDBusConnection::connectToBus(bus.address(), u"shell"_s);
    auto pavonel = QDBusConnection::connectToBus(bus.address(), u"pavonel"_s);
    QtMainLoop loop;
    ScreenSaver lock;
    there.registerObject(u"/org/gnome/ScreenSaver"_s, &lock,
                         QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    ASSERT_TRUE(there.registerService(u"org.gnome.Shell"_s));
    {
        GnomeHotKeys keys(pavonel, std::make_shared<GnomeExtension>(pavonel), loop);
        const auto registration = keys.registerKey(keyB, controlOptionCommand, 1);
        EXPECT_TRUE(waitUntil([&] { return lock.questions > 0; }));
        EXPECT_EQ(list(), u"@as []"_s);
        lock.isActive = false;
        Q_EMIT lock.ActiveChanged(false);
        EXPECT_TRUE(waitUntil([] { return list() == u"['%1']"_s.arg(ours); }));
    }
    for (const auto &each : {u"shell"_s, u"pavonel"_s})
        QDBusConnection::disconnectFromBus(each);
}

TEST(GnomeAccelerators, are_the_same_however_they_are_written) {
    for (const char *same : {"<Control><Alt><Super>b", "<Super><Primary><Mod1>B", "<ctl><mod4><alt>b"})
        EXPECT_EQ(plainAccelerator(QString::fromLatin1(same)), u"alt+control+super+b"_s) << same;
    EXPECT_NE(plainAccelerator(u"<Control><Alt>b"_s), plainAccelerator(u"<Control><Alt><Super>b"_s));
    EXPECT_EQ(plainAccelerator({}), QString());
}

} // namespace pavonel::test

#include "GnomeKeyBindingsTest.moc"
