#include "Gnome/Sensing.h"
#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "Platform/Linux/Gnome/GnomeExtensionSwitch.h"
#include "support/files.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QJsonArray>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

TEST_F(GnomeAlone, being_away_is_noticed_and_so_is_coming_back) {
    start({{u"idleResetSeconds"_s, 6}, {u"microInterval"_s, 3600}});
    EXPECT_TRUE(isHeldFor(u"away"_s));
    shell().press({u"a"_s});
    EXPECT_TRUE(isHeldFor({}));
}

TEST_F(GnomeWithExtension, a_fullscreen_window_holds_while_it_is_in_front) {
    auto player = open(u"player"_s, OtherWindow::State::fullscreen);
    start(neverAway);
    EXPECT_TRUE(isHeldFor(u"fullscreen"_s));
    player.reset();
    EXPECT_TRUE(isHeldFor({}));
    player = open(u"player"_s, OtherWindow::State::fullscreen);
    EXPECT_TRUE(isHeldFor(u"fullscreen"_s));
}

TEST_F(GnomeWithExtension, a_focus_application_holds_while_it_is_in_front) {
    const QString editor = u"org.example.Editor"_s;
    writeFile(desktop.environment().value(u"XDG_DATA_HOME"_s) + u"/applications/%1.desktop"_s.arg(editor),
              "[Desktop Entry]\nType=Application\nName=Editor\nExec=some-editor\n");
    QJsonObject settings = neverAway;
    settings.insert(u"deepFocusApps"_s, QJsonArray{editor});
    start(settings);
    const auto window = open(editor);
    EXPECT_TRUE(isHeldFor(u"deepFocus"_s));
    const auto other = open(u"other"_s);
    EXPECT_TRUE(isHeldFor({}));
}

TEST_F(GnomeWithExtension, the_item_in_the_top_bar_counts_and_its_menu_is_that_of_every_desktop) {
    start(neverAway);
    const auto item = [&](const QString &script) {
        return shell().eval(u"(item => item ? %1 : null)(Main.panel.statusArea.pavonel)"_s.arg(script));
    };
    EXPECT_TRUE(waitUntil([&] {
        return item(u"item.visible && item.get_first_child().get_last_child().text"_s) == u"\"60m\"";
    }));
    const QString titles = u"item.menu._getMenuItems().map(i => i.label?.text ?? '').join('|')"_s;
    EXPECT_TRUE(waitUntil([&] {
        return item(titles).contains(u"||Take a micro break|Take a long break|Skip next break||Pause|Reset "
                                     "timers||Today: 0 breaks · 0 skipped||Settings…|Quit Pavonel"_s);
    })) << item(titles).toStdString();
    item(u"item.menu._getMenuItems().find(i => i.label?.text === 'Take a micro break').activate(null)"_s);
    EXPECT_TRUE(comesToPhase(u"breaking"_s));
}

TEST_F(GnomeWithExtension, nothing_of_it_stays_when_the_program_ends_or_it_is_switched_off) {
    start(neverAway);
    const auto isThere = [&] { return shell().eval(u"!!Main.panel.statusArea.pavonel"_s) == u"true"; };
    const auto hasName = [&] {
        return shell().bus().interface()->isServiceRegistered(u"org.pavonel.Shell"_s).value();
    };
    ASSERT_TRUE(waitUntil([&] { return isThere() && hasName(); }));
    shell().eval(u"Main.extensionManager.disableExtension('pavonel@pavonel.org')"_s);
    EXPECT_TRUE(waitUntil([&] { return !isThere() && !hasName(); }));
    shell().eval(u"Main.extensionManager.enableExtension('pavonel@pavonel.org')"_s);
    EXPECT_TRUE(waitUntil([&] { return isThere() && hasName(); }));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_TRUE(waitUntil([&] { return !isThere() && !hasName(); }));
}

TEST(GnomeExtensionInTheShell, is_switched_on_and_off_from_our_settings) {
    GnomeShell shell(GnomeShell::Extension::disabled);
    GnomeExtensionSwitch ours(shell.bus(), std::make_shared<GnomeExtension>(shell.bus()));
    const auto becomes = [&](bool on) {
        return waitUntil([&] { return ours.isOn() == on && ours.limitation().isEmpty(); });
    };
    const auto isOnInTheShell = [&] {
        return shell.eval(u"Main.extensionManager.lookup('pavonel@pavonel.org').state"_s) == u"1";
    };
    EXPECT_TRUE(waitUntil([&] { return ours.isPossible() && !ours.isOn() && ours.limitation().isEmpty(); }));
    for (const bool on : {true, false}) {
        ours.setOn(on);
        EXPECT_TRUE(waitUntil([&] { return isOnInTheShell() == on; }));
        EXPECT_TRUE(becomes(on));
    }
}

TEST(GnomeExtensionInTheShell, that_is_not_installed_cannot_be_switched) {
    GnomeShell shell(GnomeShell::Extension::missing);
    GnomeExtensionSwitch ours(shell.bus(), std::make_shared<GnomeExtension>(shell.bus()));
    EXPECT_TRUE(ours.isPossible());
    EXPECT_TRUE(waitUntil([&] { return !ours.isOn() && !ours.limitation().isEmpty(); }));
}

TEST_F(GnomeWithExtension, answers_nobody_but_pavonel) {
    start(neverAway);
    ASSERT_TRUE(waitUntil(
        [&] { return shell().bus().interface()->isServiceRegistered(u"org.pavonel.Shell"_s).value(); }));
    for (const char *method : {"Front", "Pointer"}) {
        const QDBusMessage reply = shell().bus().call(
            QDBusMessage::createMethodCall(u"org.pavonel.Shell"_s, u"/org/pavonel/Shell"_s,
                                           u"org.pavonel.Shell"_s, QString::fromLatin1(method)));
        EXPECT_EQ(reply.errorName().toStdString(), "org.freedesktop.DBus.Error.AccessDenied") << method;
    }
}

TEST_F(GnomeAlone, opening_pavonel_again_shows_the_settings) {
    start(neverAway);
    ASSERT_TRUE(comesToPhase(u"counting"_s));
    EXPECT_EQ(ChildProcess::run(QStringLiteral(PAVONEL_PROGRAM), {}, desktop.environment()).status, 0);
    EXPECT_TRUE(waitUntil([&] {
        return shell()
            .eval(u"global.get_window_actors().map(a => a.meta_window.title).join('|')"_s)
            .contains(u"Pavonel"_s);
    }));
}

} // namespace pavonel::test
