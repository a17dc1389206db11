#include "Core/SystemBits.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Launch = FakeProcessLauncher::Launch;

std::vector<Launch> launchesOf(const QString &script) {
    FakeProcessLauncher launcher;
    Automation::run(launcher, script);
    return launcher.launches;
}

std::vector<Launch> inlineSource(const QString &source) {
    return {{QStringLiteral("/usr/bin/osascript"), {QStringLiteral("-e"), source}}};
}

std::vector<Launch> scriptFile(const QString &path) {
    return {{QStringLiteral("/usr/bin/osascript"), {path}}};
}

std::vector<Launch> shortcut(const QString &name) {
    return {{QStringLiteral("/usr/bin/shortcuts"), {QStringLiteral("run"), name}}};
}

} // namespace

TEST(Automation, inline_source_loses_the_blanks_around_it) {
    const QString source = QStringLiteral("display notification \"Hi\"");
    EXPECT_EQ(launchesOf(source), inlineSource(source));
    EXPECT_EQ(launchesOf(QStringLiteral(" \n\t\r") + source + QStringLiteral("\u00A0\n ")),
              inlineSource(source));
}

TEST(Automation, inline_source_keeps_its_inner_lines) {
    EXPECT_EQ(launchesOf(QStringLiteral("\none  \n\n two\n")), inlineSource(QStringLiteral("one  \n\n two")));
}

TEST(Automation, a_script_of_blanks_alone_starts_nothing) {
    EXPECT_TRUE(launchesOf({}).empty());
    EXPECT_TRUE(launchesOf(QStringLiteral(" \n \t\r\n ")).empty());
}

TEST(Automation, a_path_with_a_script_extension_is_run_as_a_file) {
    EXPECT_EQ(launchesOf(QStringLiteral("/home/me/a b.scpt")),
              scriptFile(QStringLiteral("/home/me/a b.scpt")));
    EXPECT_EQ(launchesOf(QStringLiteral(" ~/x.applescript\n")),
              scriptFile(QStringLiteral("~/x.applescript")));
    EXPECT_EQ(launchesOf(QStringLiteral(".scpt")), scriptFile(QStringLiteral(".scpt")));
}

TEST(Automation, an_extension_in_capitals_is_inline_source) {
    EXPECT_EQ(launchesOf(QStringLiteral("/a.SCPT")), inlineSource(QStringLiteral("/a.SCPT")));
    EXPECT_EQ(launchesOf(QStringLiteral("/a.AppleScript")), inlineSource(QStringLiteral("/a.AppleScript")));
    EXPECT_EQ(launchesOf(QStringLiteral("/a.scptd")), inlineSource(QStringLiteral("/a.scptd")));
}

TEST(Automation, a_shortcut_is_named_to_the_letter_after_its_prefix) {
    EXPECT_EQ(launchesOf(QStringLiteral("shortcut:Dim Lights")), shortcut(QStringLiteral("Dim Lights")));
    EXPECT_EQ(launchesOf(QStringLiteral("  shortcut: Dim  ")), shortcut(QStringLiteral(" Dim")));
    EXPECT_EQ(launchesOf(QStringLiteral("shortcut:")), shortcut(QString()));
    EXPECT_EQ(launchesOf(QStringLiteral("shortcut:a.scpt")), shortcut(QStringLiteral("a.scpt")));
}

TEST(Automation, a_prefix_in_capitals_is_inline_source) {
    EXPECT_EQ(launchesOf(QStringLiteral("Shortcut:Dim")), inlineSource(QStringLiteral("Shortcut:Dim")));
}

TEST(Automation, a_script_that_cannot_be_started_is_dropped) {
    FakeProcessLauncher launcher;
    launcher.succeeds = false;
    Automation::run(launcher, QStringLiteral("beep"));
    EXPECT_EQ(launcher.launches.size(), 1U);
}

TEST(SoundPlayer, none_and_an_empty_name_are_silent) {
    FakeSounds sounds;
    SoundPlayer::play(sounds, QStringLiteral("None"));
    SoundPlayer::play(sounds, QString());
    EXPECT_EQ(sounds.played, QStringList());
}

TEST(SoundPlayer, any_other_name_is_the_systems_to_know) {
    FakeSounds sounds;
    SoundPlayer::play(sounds, QStringLiteral("Glass"));
    SoundPlayer::play(sounds, QStringLiteral("none"));
    SoundPlayer::play(sounds, QStringLiteral("no such sound"));
    EXPECT_EQ(sounds.played.size(), 3);
}

TEST(LaunchAtLogin, success_has_no_text) {
    FakeLoginItem item;
    EXPECT_EQ(LaunchAtLogin::set(item, true), std::nullopt);
    EXPECT_TRUE(item.enabled);
    EXPECT_EQ(LaunchAtLogin::set(item, false), std::nullopt);
    EXPECT_FALSE(item.enabled);
}

TEST(LaunchAtLogin, a_failure_is_its_readable_sentence) {
    FakeLoginItem item;
    item.failure = QStringLiteral("The folder cannot be written.");
    EXPECT_EQ(LaunchAtLogin::set(item, true), QStringLiteral("The folder cannot be written."));
}

} // namespace pavonel::test
