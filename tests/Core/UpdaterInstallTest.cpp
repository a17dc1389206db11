#include "support/UpdateFixture.h"

#include <QCoreApplication>

#include <future>
#include <thread>

namespace pavonel::test {

namespace {

using UpdaterInstalling = UpdateFixture;

const Updater::State downloading = Updater::Downloading{0};
const Updater::State readyToRestart = Updater::ReadyToRestart{};

} // namespace

TEST_F(UpdaterInstalling, without_a_release_does_nothing) {
    updater->install();
    EXPECT_EQ(updater->state.get(), Updater::State(Updater::Idle{}));
    EXPECT_TRUE(platform.web.downloads.empty());
}

TEST_F(UpdaterInstalling, with_an_address_that_is_none_does_nothing) {
    for (const char *url : {"http://[", "https://a b/", ""}) {
        installOffer({.url = QString::fromUtf8(url)});
        EXPECT_EQ(updater->state.get().index(), Updater::State(Updater::Available{}).index()) << url;
    }
    EXPECT_TRUE(platform.web.downloads.empty());
}

TEST_F(UpdaterInstalling, downloads_the_release_into_the_private_folder) {
    installOffer({});
    EXPECT_EQ(updater->state.get(), downloading);
    ASSERT_EQ(platform.web.downloads.size(), 1U);
    const HttpDownload &request = platform.web.downloads[0].request;
    EXPECT_EQ(request.url, QUrl(QStringLiteral("https://example.org/Pavonel.dmg")));
    EXPECT_EQ(request.folder, folder.path());
    EXPECT_EQ(request.timeout, 60);
    platform.loop.advance(1000);
    EXPECT_EQ(updater->state.get(), downloading) << "and no progress is told";
}

TEST_F(UpdaterInstalling, needs_a_release_but_no_offer) {
    checkAndFind({.version = QStringLiteral("1.2.0")});
    EXPECT_EQ(updater->state.get(), Updater::State(Updater::UpToDate{}));
    updater->install();
    EXPECT_EQ(updater->state.get(), downloading);
}

TEST_F(UpdaterInstalling, a_check_during_the_download_is_ignored) {
    installOffer({});
    updater->check(Updater::CheckKind::interactive);
    EXPECT_EQ(updater->state.get(), downloading);
    EXPECT_EQ(platform.web.exchanges.size(), 1U);
}

TEST_F(UpdaterInstalling, the_late_reply_to_a_check_does_not_interrupt_the_download) {
    checkAndFind({});
    updater->check(Updater::CheckKind::interactive);
    updater->install();
    platform.web.exchanges.back().answer({});
    platform.loop.advance(0);
    EXPECT_EQ(updater->state.get(), downloading);
    downloadArrives();
    platform.loop.advance(0);
    platform.web.exchanges.front().answer({});
    platform.loop.advance(0);
    EXPECT_EQ(updater->state.get(), readyToRestart) << "and nothing takes back the restart";
}

TEST_F(UpdaterInstalling, installs_the_last_release_that_was_understood) {
    checkAndFind({});
    updater->check(Updater::CheckKind::interactive);
    platform.web.exchanges.back().answer(HttpResponse{200, "rubbish"});
    platform.loop.advance(0);
    EXPECT_EQ(message(), QStringLiteral("Could not reach the update server."));
    updater->install();
    ASSERT_EQ(platform.web.downloads.size(), 1U);
    EXPECT_EQ(platform.web.downloads[0].request.url, QUrl(QStringLiteral("https://example.org/Pavonel.dmg")));
}

TEST_F(UpdaterInstalling, a_check_after_a_failed_install_starts_afresh) {
    installOffer({});
    platform.web.downloads[0].answer({});
    platform.loop.advance(0);
    checkAndFind({});
    EXPECT_EQ(updater->state.get().index(), Updater::State(Updater::Available{}).index());
    installWhole({});
    EXPECT_EQ(updater->state.get(), readyToRestart);
}

TEST_F(UpdaterInstalling, a_download_that_breaks_off_fails) {
    installOffer({});
    platform.web.downloads[0].answer({});
    EXPECT_EQ(updater->state.get(), downloading) << "before the main thread has it";
    platform.loop.advance(0);
    EXPECT_EQ(updater->state.get(), failed(QStringLiteral("The download did not finish.")));
    EXPECT_TRUE(platform.toolRunner.runs.empty());
}

TEST_F(UpdaterInstalling, calls_exactly_these_tools_in_this_order) {
    installWhole({});
    const QString app = mountPoint() + QStringLiteral("/Pavonel.app");
    const auto hdiutil = QStringLiteral("/usr/bin/hdiutil");
    const std::vector<Run> expected{
        {hdiutil,
         {QStringLiteral("attach"), path(QStringLiteral("Pavonel-1.3.0.dmg")), QStringLiteral("-nobrowse"),
          QStringLiteral("-quiet"), QStringLiteral("-mountpoint"), mountPoint()}},
        {QStringLiteral("/usr/bin/codesign"),
         {QStringLiteral("--verify"), QStringLiteral("--deep"), QStringLiteral("--strict"),
          QStringLiteral("-R=anchor apple generic and certificate leaf[subject.OU] = \"") + Updater::teamID +
              QStringLiteral("\""),
          app}},
        {QStringLiteral("/usr/sbin/spctl"),
         {QStringLiteral("--assess"), QStringLiteral("--type"), QStringLiteral("execute"), app}},
        {QStringLiteral("/bin/cp"),
         {QStringLiteral("-R"), app, path(QStringLiteral("Pavonel-staged-1.3.0.app"))}},
        {hdiutil, {QStringLiteral("detach"), mountPoint(), QStringLiteral("-quiet")}},
    };
    EXPECT_EQ(platform.toolRunner.runs, expected);
    EXPECT_EQ(updater->state.get(), readyToRestart);
}

TEST_F(UpdaterInstalling, the_mount_point_has_eight_random_digits) {
    installWhole({});
    const QString first = mountPoint();
    const QString prefix = path(QStringLiteral("pavonel-update-"));
    ASSERT_TRUE(first.startsWith(prefix)) << first.toStdString();
    const QString digits = first.sliced(prefix.size());
    EXPECT_EQ(digits.size(), 8);
    EXPECT_EQ(QByteArray::fromHex(digits.toLatin1()).size(), 4) << digits.toStdString();
    platform.toolRunner.runs.clear();
    platform.copy.isBeingReplaced = false;
    installWhole({});
    EXPECT_NE(mountPoint(), first);
}

TEST_F(UpdaterInstalling, a_checksum_in_capitals_matches) {
    const QByteArray sum = QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex();
    installWhole({.sha256 = QString::fromLatin1(sum.toUpper())});
    EXPECT_EQ(updater->state.get(), readyToRestart);
}

TEST_F(UpdaterInstalling, a_checksum_that_does_not_match_fails_before_anything_is_attached) {
    const QByteArray sum = QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex();
    for (const QString &wrong : {QString(64, u'0'), QStringLiteral("00"), QString::fromLatin1(sum.chopped(1)),
                                 QString::fromLatin1(' ' + sum), QString::fromLatin1(sum + '\n')}) {
        installWhole({.sha256 = wrong});
        EXPECT_EQ(message(),
                  QStringLiteral("The download does not match its checksum. Nothing was installed."));
    }
    EXPECT_TRUE(platform.toolRunner.runs.empty());
    EXPECT_TRUE(exists(QStringLiteral("Pavonel-1.3.0.dmg"))) << "it stays";
}

TEST_F(UpdaterInstalling, an_image_that_cannot_be_attached_is_not_detached) {
    letFail(QStringLiteral("attach"), "no file system\n");
    installWhole({});
    EXPECT_EQ(message(), QStringLiteral("hdiutil refused the update: no file system"));
    EXPECT_EQ(toolsRun(), QStringList{QStringLiteral("attach")});
}

TEST_F(UpdaterInstalling, an_image_with_the_application_under_another_name_fails_and_is_detached) {
    application = QStringLiteral("Pavonel 2.app");
    installWhole({});
    EXPECT_EQ(message(), QStringLiteral("That disk image does not contain Pavonel."));
    EXPECT_EQ(toolsRun(), (QStringList{QStringLiteral("attach"), QStringLiteral("detach")}));
}

TEST_F(UpdaterInstalling, each_tool_that_refuses_ends_it_with_its_words_and_the_image_is_detached) {
    QStringList before{QStringLiteral("attach")};
    for (const QString &tool : {QStringLiteral("codesign"), QStringLiteral("spctl"), QStringLiteral("cp")}) {
        before.append(tool);
        start("https://example.org/updates.json");
        platform.toolRunner.runs.clear();
        letFail(tool, "\n  because of this\nand that \n\n");
        installWhole({});
        EXPECT_EQ(message(), tool + QStringLiteral(" refused the update: because of this\nand that"));
        EXPECT_EQ(toolsRun(), before + QStringList{QStringLiteral("detach")});
        let(tool, ToolRunner::Ended{});
    }
    EXPECT_TRUE(platform.launcher.launches.empty());
    platform.loop.advance(10);
    EXPECT_TRUE(platform.loop.quits.empty());
}

TEST_F(UpdaterInstalling, a_copy_that_was_not_finished_is_removed) {
    platform.toolRunner.answer = [this, work = platform.toolRunner.answer](const QString &tool,
                                                                           const QStringList &arguments) {
        if (tool == u"/bin/cp")
            write(QStringLiteral("Pavonel-staged-1.3.0.app/half"), "of it");
        return work(tool, arguments);
    };
    letFail(QStringLiteral("cp"), "No space left on device");
    installWhole({});
    EXPECT_EQ(message(), QStringLiteral("cp refused the update: No space left on device"));
    EXPECT_FALSE(exists(QStringLiteral("Pavonel-staged-1.3.0.app")));
}

TEST_F(UpdaterInstalling, a_tool_says_at_most_200_characters) {
    const QString long_ = QString(199, u'x') + QString::fromUtf8("\xf0\x9f\xa6\x9a") + QString(100, u'y');
    letFail(QStringLiteral("codesign"), "\n" + long_.toUtf8());
    installWhole({});
    EXPECT_EQ(message(), QStringLiteral("codesign refused the update: ") + QString(199, u'x') +
                             QString::fromUtf8("\xf0\x9f\xa6\x9a"));
}

TEST_F(UpdaterInstalling, characters_beyond_the_basic_plane_count_as_one_each) {
    const QString peacock = QString::fromUtf8("\xf0\x9f\xa6\x9a");
    for (const auto &[said, quoted] : {std::pair(150, 150), std::pair(200, 200), std::pair(201, 200)}) {
        letFail(QStringLiteral("codesign"), peacock.repeated(said).toUtf8());
        installWhole({});
        EXPECT_EQ(message(), QStringLiteral("codesign refused the update: ") + peacock.repeated(quoted));
    }
}

TEST_F(UpdaterInstalling, a_tool_that_says_nothing_readable_is_quoted_with_nothing) {
    for (const char *output : {"", " \n\t ", "\xff\xfe broken", "cut \xf0\x9f"}) {
        letFail(QStringLiteral("spctl"), output);
        installWhole({});
        EXPECT_EQ(message(), QStringLiteral("spctl refused the update: ")) << output;
    }
}

TEST_F(UpdaterInstalling, a_tool_that_cannot_be_started_is_told_in_the_systems_words) {
    let(QStringLiteral("codesign"), ToolRunner::NotStarted{QStringLiteral("No such program.")});
    installWhole({});
    EXPECT_EQ(message(), QStringLiteral("No such program."));
    EXPECT_EQ(toolsRun().last(), QStringLiteral("detach"));
}

TEST_F(UpdaterInstalling, an_image_that_cannot_be_detached_does_not_matter) {
    letFail(QStringLiteral("detach"), "busy");
    installWhole({});
    EXPECT_EQ(updater->state.get(), readyToRestart);
    platform.loop.advance(1);
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
}

TEST_F(UpdaterInstalling, what_an_earlier_attempt_left_is_replaced) {
    write(QStringLiteral("Pavonel-1.3.0.dmg"), "half of it");
    write(QStringLiteral("Pavonel-staged-1.3.0.app/stale"), "from then");
    write(QStringLiteral("pavonel-update.sh"), "rm -rf everything");
    installWhole({});
    EXPECT_EQ(updater->state.get(), readyToRestart);
    EXPECT_EQ(read(QStringLiteral("Pavonel-1.3.0.dmg")), image);
    EXPECT_TRUE(exists(QStringLiteral("Pavonel-staged-1.3.0.app")));
    EXPECT_FALSE(exists(QStringLiteral("Pavonel-staged-1.3.0.app/stale")));
    EXPECT_FALSE(read(QStringLiteral("pavonel-update.sh")).contains("everything"));
}

TEST_F(UpdaterInstalling, what_attempts_of_other_days_left_is_removed) {
    const QStringList leftovers{QStringLiteral("download-AbCdEf"), QStringLiteral("Pavonel-1.1.dmg"),
                                QStringLiteral("pavonel-update-0badcafe/Pavonel.app/file"),
                                QStringLiteral("Pavonel-staged-1.1.app/file")};
    const QStringList others{QStringLiteral("download-today"), QStringLiteral("something"),
                             QStringLiteral("Pavonel.app/file")};
    for (const QString &name : leftovers + others)
        write(name, "left");
    for (const QString &name : leftovers + others.sliced(1))
        age(name.section(u'/', 0, 0), 90'000);
    age(others[0], 80'000);
    installWhole({});
    EXPECT_EQ(updater->state.get(), readyToRestart);
    for (const QString &name : leftovers)
        EXPECT_FALSE(exists(name)) << name.toStdString();
    for (const QString &name : others)
        EXPECT_TRUE(exists(name)) << name.toStdString();
}

TEST_F(UpdaterInstalling, a_link_that_is_in_the_way_goes_and_what_it_leads_to_stays) {
    write(QStringLiteral("precious/file"), "mine");
    QFile::link(path(QStringLiteral("precious")), path(QStringLiteral("Pavonel-staged-1.3.0.app")));
    QFile::link(path(QStringLiteral("precious/file")), path(QStringLiteral("Pavonel-1.3.0.dmg")));
    installWhole({});
    EXPECT_EQ(updater->state.get(), readyToRestart);
    EXPECT_EQ(read(QStringLiteral("precious/file")), "mine");
}

TEST_F(UpdaterInstalling, a_download_that_has_vanished_fails) {
    installOffer({});
    platform.web.downloads[0].answer(path(QStringLiteral("nothing")));
    platform.loop.advance(0);
    EXPECT_TRUE(message().startsWith(QStringLiteral("The download cannot be moved to ")))
        << message().toStdString();
    EXPECT_TRUE(platform.toolRunner.runs.empty());
}

TEST_F(UpdaterInstalling, a_download_that_cannot_be_read_fails) {
    QDir().mkpath(path(QStringLiteral("download-1")));
    installOffer({});
    platform.web.downloads[0].answer(path(QStringLiteral("download-1")));
    platform.loop.advance(0);
    EXPECT_TRUE(message().startsWith(QStringLiteral("The download cannot be read (")))
        << message().toStdString();
    EXPECT_TRUE(platform.toolRunner.runs.empty());
}

TEST_F(UpdaterInstalling, hands_over_to_a_script_that_waits_and_quits_soon_after) {
    installWhole({});
    const QString script = path(QStringLiteral("pavonel-update.sh"));
    EXPECT_EQ(platform.launcher.launches,
              (std::vector<FakeProcessLauncher::Launch>{{QStringLiteral("/bin/bash"), {script}}}));
    EXPECT_EQ(platform.launcher.searchPaths, std::vector{ProcessLauncher::SearchPath::ownToolsFirst});
    platform.loop.advance(0.39);
    EXPECT_TRUE(platform.loop.quits.empty());
    platform.loop.advance(0.01);
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
}

TEST_F(UpdaterInstalling, the_script_has_seven_lines_and_its_owner_may_run_it) {
    platform.copy.runningBundle = QStringLiteral("/home/a b's/Pavonel.app");
    installWhole({});
    const QString staged = path(QStringLiteral("Pavonel-staged-1.3.0.app"));
    const QString expected =
        QStringLiteral("#!/bin/bash\n"
                       "while kill -0 %1 2>/dev/null; do sleep 0.3; done\n"
                       "rm -rf \"/home/a b's/Pavonel.app\"\n"
                       "cp -R \"%2\" \"/home/a b's/Pavonel.app\"\n"
                       "xattr -dr com.apple.quarantine \"/home/a b's/Pavonel.app\" 2>/dev/null\n"
                       "rm -rf \"%2\"\n"
                       "open \"/home/a b's/Pavonel.app\"")
            .arg(QCoreApplication::applicationPid())
            .arg(staged);
    EXPECT_EQ(read(QStringLiteral("pavonel-update.sh")), expected.toUtf8());
    EXPECT_EQ(QFile::permissions(path(QStringLiteral("pavonel-update.sh"))) & 0x7077, 0x7055);
}

TEST_F(UpdaterInstalling, is_ready_to_restart_before_the_hand_over_can_fail) {
    platform.launcher.succeeds = false;
    std::vector<std::size_t> states;
    installOffer({});
    const auto observation = updater->observe([&] { states.push_back(updater->state.get().index()); });
    downloadArrives();
    platform.loop.advance(0);
    EXPECT_EQ(states, (std::vector{downloading.index(), readyToRestart.index()}));
    EXPECT_EQ(message(), QStringLiteral("The program /bin/bash cannot be started."));
    EXPECT_EQ(toolsRun().last(), QStringLiteral("detach"));
    platform.loop.advance(10);
    EXPECT_TRUE(platform.loop.quits.empty());
}

TEST_F(UpdaterInstalling, a_script_that_cannot_be_written_fails) {
    QDir().mkpath(path(QStringLiteral("pavonel-update.sh")));
    installWhole({});
    EXPECT_TRUE(message().contains(QStringLiteral("pavonel-update.sh cannot be written")))
        << message().toStdString();
    EXPECT_TRUE(platform.launcher.launches.empty());
    EXPECT_EQ(toolsRun().last(), QStringLiteral("detach"));
}

TEST_F(UpdaterInstalling, the_image_is_detached_after_the_hand_over) {
    bool hadLaunched = false;
    const auto work = platform.toolRunner.answer;
    platform.toolRunner.answer = [&](const QString &tool, const QStringList &arguments) {
        if (arguments.first() == u"detach")
            hadLaunched = !platform.launcher.launches.empty();
        return work(tool, arguments);
    };
    installWhole({});
    EXPECT_TRUE(hadLaunched);
}

TEST_F(UpdaterInstalling, a_second_install_is_not_held_back) {
    installOffer({});
    updater->install();
    EXPECT_EQ(platform.web.downloads.size(), 2U);
    downloadArrives();
    platform.loop.advance(0);
    EXPECT_EQ(updater->state.get(), readyToRestart);
}

TEST_F(UpdaterInstalling, a_download_for_an_updater_that_is_gone_is_removed) {
    installOffer({});
    updater.reset();
    downloadArrives();
    platform.loop.advance(10);
    EXPECT_TRUE(platform.toolRunner.runs.empty());
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    EXPECT_TRUE(platform.loop.quits.empty());
}

TEST_F(UpdaterInstalling, a_tool_that_hangs_leaves_the_main_thread_alone) {
    std::promise<void> end;
    const auto work = platform.toolRunner.answer;
    platform.toolRunner.answer = [&](const QString &tool, const QStringList &arguments) {
        if (tool.endsWith(u"codesign"))
            end.get_future().wait();
        return work(tool, arguments);
    };
    installOffer({});
    std::thread background([this] { downloadArrives(); });
    int ticks = 0;
    const auto timer = platform.loop.every(1, [&] { ++ticks; });
    platform.loop.advance(100);
    EXPECT_EQ(ticks, 100);
    EXPECT_EQ(updater->state.get(), downloading);
    end.set_value();
    background.join();
    platform.loop.advance(0);
    EXPECT_EQ(updater->state.get(), readyToRestart);
}

} // namespace pavonel::test
