#include "Gnome/Sensing.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// The shortcuts while another window has the keyboard.
struct Shortcuts : Sensing {
    using Sensing::Sensing;

    void startCounting() {
        QJsonObject settings = neverAway;
        settings.insert(u"microDuration"_s, 600);
        start(settings);
        ASSERT_TRUE(comesToPhase(u"counting"_s));
    }
    /// Presses once more whenever the other window got the key.
    bool bringTo(const QString &phase, Qt::Key key) {
        const QString name = QString(QChar(key)).toLower();
        const QByteArray event = "key " + QByteArray::number(key);
        const auto isThere = [&] { return desktop.status("Phase").toString() == phase; };
        do {
            const qsizetype before = other->times(event);
            shell().press({u"Control_L"_s, u"Alt_L"_s, u"Super_L"_s, name});
            if (!waitUntil([&] { return isThere() || other->times(event) > before; }))
                return false;
        } while (!isThere());
        return true;
    }
    void expectAllThreeToWork() {
        EXPECT_TRUE(bringTo(u"paused"_s, Qt::Key_P));
        EXPECT_TRUE(bringTo(u"counting"_s, Qt::Key_P));
        EXPECT_TRUE(bringTo(u"breaking"_s, Qt::Key_B));
        EXPECT_TRUE(bringTo(u"counting"_s, Qt::Key_S));
    }

    std::unique_ptr<OtherWindow> other = open(u"other"_s);
};

struct ShortcutsOfExtension : Shortcuts {
    ShortcutsOfExtension() : Shortcuts(GnomeShell::Extension::enabled) {}
};

/// With the service of GNOME that heeds custom key bindings.
struct CustomKeyBindings : Shortcuts {
    CustomKeyBindings() : Shortcuts(GnomeShell::Extension::missing) {}

    QString settings(const QStringList &words) {
        const auto ended = ChildProcess::run(u"gsettings"_s, words, desktop.environment());
        EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
        return QString::fromUtf8(ended.output);
    }
    QString list() {
        return settings(
            {u"get"_s, u"org.gnome.settings-daemon.plugins.media-keys"_s, u"custom-keybindings"_s});
    }
    bool areListed(qsizetype count) {
        return waitUntil([&] { return list().count(u"pavonel-"_s) == count; });
    }

    ChildProcess mediaKeys{u"/usr/libexec/gsd-media-keys"_s, {}, shell().environment()};
};

} // namespace

TEST_F(ShortcutsOfExtension, work_whichever_window_has_the_keyboard_and_so_does_escape) {
    startCounting();
    expectAllThreeToWork();
    ASSERT_TRUE(bringTo(u"breaking"_s, Qt::Key_B));
    shell().press({u"Escape"_s});
    EXPECT_TRUE(comesToPhase(u"counting"_s));
    EXPECT_EQ(other->times("key " + QByteArray::number(Qt::Key_Escape)), 0);
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(CustomKeyBindings, work_without_the_extension_and_go_with_the_program) {
    startCounting();
    ASSERT_TRUE(areListed(3));
    expectAllThreeToWork();
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_TRUE(areListed(0));
}

TEST_F(CustomKeyBindings, that_a_killed_pavonel_left_are_taken_over) {
    startCounting();
    ASSERT_TRUE(areListed(3));
    desktop.endProgram(SIGKILL);
    EXPECT_TRUE(areListed(3));
    startCounting();
    expectAllThreeToWork();
    EXPECT_TRUE(areListed(3));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_TRUE(areListed(0));
}

TEST_F(CustomKeyBindings, that_a_killed_pavonel_left_go_when_shortcuts_are_switched_off) {
    startCounting();
    ASSERT_TRUE(areListed(3));
    desktop.endProgram(SIGKILL);
    QJsonObject off = neverAway;
    off.insert(u"hotKeysEnabled"_s, false);
    start(off);
    EXPECT_TRUE(areListed(0));
}

} // namespace pavonel::test
