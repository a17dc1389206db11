#include "EndToEnd/ReleaseFixture.h"
#include "support/InChild.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QTcpSocket>

#include <algorithm>
#include <csignal>

namespace pavonel::test {

namespace {

/// Nobody means harm, but things go wrong between two releases.
class UpdateMishap : public ReleaseFixture {
protected:
    UpdateMishap() {
        shell("bundle \"$installed\" 1.0 \"$build/pavonel\"; mkdir image site; cp -R \"$installed\" image\n"
              "resign 1.1; pack 1.1; offer 1.1");
        before = fingerprint();
    }

    void expectFailed(const Update &update, const QByteArray &sentence) {
        EXPECT_EQ(update.status, 1) << update.errors.toStdString();
        EXPECT_EQ(update.lines.last().toStdString(), ("failed: " + sentence).toStdString());
        EXPECT_EQ(fingerprint(), before) << "the installed copy was touched";
    }

    void expectUpdateSucceeds() {
        EXPECT_EQ(updateNow().lines.last(), "verified and staged; replacing on exit");
        expectNewVersionRuns();
    }
    void expectNewVersionRuns() {
        EXPECT_TRUE(waitUntil(
            [&] { return read("Applications/Pavonel.app/version") == "1.1\n" && processes().size() == 1; }));
    }

    /// The tool says that it runs, in the file "hangs", and then does nothing until its parent has ended.
    void letHang(const char *tool) {
        shell("cd \"$installed/libexec/pavonel\"; mv " + QByteArray(tool) + " \"$HOME/tool\"\n" +
              hangingScript + "mv \"$HOME/hanging\" " + tool);
        before = fingerprint();
    }
    void mend(const char *tool) {
        shell("mv tool \"$installed/libexec/pavonel/" + QByteArray(tool) + "\"");
        before = fingerprint();
    }

    const QByteArray hangingScript = "printf '#!/bin/bash\\ntouch \"$HOME/hangs\"\\nexec tail --pid=$PPID -f "
                                     "/dev/null\\n' >\"$HOME/hanging\"\n"
                                     "chmod +x \"$HOME/hanging\"\n";

    void killWhileHanging(const QByteArray &commandsBefore = {}) {
        const auto program = startUpdate(commandsBefore);
        ASSERT_TRUE(waitUntil([&] { return exists("hangs") || !program->isRunning(); }));
        ASSERT_TRUE(program->isRunning()) << program->process().readAllStandardOutput().toStdString();
        program->process().kill();
        ASSERT_TRUE(waitUntil([&] { return !program->isRunning(); }));
        EXPECT_EQ(fingerprint(), before);
    }

    /// Its file is there a moment before.
    bool isScriptAtWork() const {
        const QByteArray script = QFile::encodeName(path("cache/pavonel/tmp/pavonel-update.sh"));
        const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
        return std::any_of(processes.begin(), processes.end(), [&](const QString &process) {
            QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(process));
            return commandLine.open(QFile::ReadOnly) && commandLine.readAll().split('\0').value(1) == script;
        });
    }

    /// With the folder for temporary files on a disk of this size.
    Update updateOnDiskOf(const QByteArray &megabytes) {
        return updateNow("mount -t tmpfs -o mode=700,size=" + megabytes + "m none \"$XDG_CACHE_HOME\"");
    }

    QByteArray before;
};

} // namespace

TEST_F(UpdateMishap, a_feed_that_is_gone_is_no_feed) {
    shell("rm site/updates.json");
    expectFailed(updateNow(), "Could not reach the update server.");
}

TEST_F(UpdateMishap, an_image_that_is_gone_is_no_image) {
    shell("rm site/Pavonel-1.1.dmg");
    expectFailed(updateNow(), "The download does not match its checksum. Nothing was installed.");
}

TEST_F(UpdateMishap, when_the_network_goes_in_the_middle_of_the_download_the_copy_stays) {
    answer = [this](const auto &request, auto &connection) {
        if (request.line().contains("updates.json"))
            return HttpServer::respond(200, read("site/updates.json"))(request, connection);
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 6000000\r\n\r\n" + QByteArray(100'000, 'x'));
        connection.disconnectFromHost();
    };
    expectFailed(updateNow(), "The download did not finish.");
    answer = {};
    expectUpdateSucceeds();
}

TEST_F(UpdateMishap, a_missing_unpacker_is_named) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test hide a program.";
    expectFailed(
        updateNow("mount --bind /dev/null \"$(command -v unsquashfs)\""),
        "hdiutil refused the update: Disk images need the program unsquashfs (package squashfs-tools), "
        "which is not installed.");
}

TEST_F(UpdateMishap, a_missing_tool_of_our_own_is_told) {
    shell("rm \"$installed/libexec/pavonel/codesign\"");
    before = fingerprint();
    const auto update = updateNow();
    EXPECT_EQ(update.status, 1);
    EXPECT_TRUE(update.lines.last().startsWith("failed: ")) << update.lines.last().toStdString();
    EXPECT_EQ(fingerprint(), before);
}

TEST_F(UpdateMishap, a_tool_that_hangs_does_not_keep_the_program_from_ending) {
    letHang("hdiutil");
    const auto program = startUpdate();
    ASSERT_TRUE(waitUntil([&] { return exists("hangs"); }));
    program->process().terminate();
    EXPECT_TRUE(waitUntil([&] { return !program->isRunning(); }));
    EXPECT_EQ(fingerprint(), before);
}

TEST_F(UpdateMishap, a_second_updater_leaves_the_first_alone) {
    letHang("codesign");
    const auto first = startUpdate();
    ASSERT_TRUE(waitUntil([&] { return exists("hangs"); }));
    expectFailed(updateNow(), "Another update of Pavonel is under way.");
    EXPECT_TRUE(first->isRunning());
    first->process().terminate();
    ASSERT_TRUE(waitUntil([&] { return !first->isRunning(); }));
    mend("codesign");
    expectUpdateSucceeds();
}

TEST_F(UpdateMishap, a_disk_that_is_almost_full_is_left_alone) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test mount a small disk.";
    expectFailed(updateOnDiskOf("4"), "The download did not finish.");
}

TEST_F(UpdateMishap, a_disk_that_fills_up_while_the_copy_is_made_costs_nothing) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test mount a small disk.";
    shell("cd \"$installed/libexec/pavonel\"; mv spctl real\n"
          "printf '#!/bin/bash\\ncat /dev/zero >\"$XDG_CACHE_HOME/filler\" 2>/dev/null\\nexec "
          "\"${0%%/*}/real\" "
          "\"$@\"\\n' >spctl\n"
          "chmod +x spctl");
    before = fingerprint();
    const auto update = updateOnDiskOf("400");
    EXPECT_EQ(update.status, 1);
    EXPECT_TRUE(update.lines.last().startsWith("failed: cp refused the update: "))
        << update.lines.last().toStdString();
    EXPECT_EQ(fingerprint(), before);
}

TEST_F(UpdateMishap, a_place_without_room_for_the_new_version_keeps_the_old_one) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test mount a small disk.";
    shell("resign 1.1 'truncate -s 30M more'; pack 1.1; offer 1.1");
    const auto update = updateNow("cp -R \"$HOME/Applications\" \"$HOME/copy\"\n"
                                  "size=$(($(du -ms \"$HOME/copy\" | cut -f1) + 10))\n"
                                  "mount -t tmpfs -o mode=755,size=${size}m none \"$HOME/Applications\"\n"
                                  "cp -R \"$HOME/copy/.\" \"$HOME/Applications\"");
    expectFailed(update, "There is not enough room for the new version in " +
                             QFile::encodeName(path("Applications")) + ". Nothing was installed.");
    EXPECT_TRUE(processes().empty());
}

TEST_F(UpdateMishap, killed_during_the_download_it_updates_the_next_time) {
    bool asked = false;
    answer = [&](const auto &request, auto &connection) {
        if (request.line().contains("updates.json"))
            return HttpServer::respond(200, read("site/updates.json"))(request, connection);
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 6000000\r\n\r\n" + QByteArray(100'000, 'x'));
        asked = true;
    };
    {
        const auto program = startUpdate();
        ASSERT_TRUE(waitUntil([&] { return asked; }));
        program->process().kill();
        ASSERT_TRUE(waitUntil([&] { return !program->isRunning(); }));
    }
    EXPECT_EQ(fingerprint(), before);
    answer = {};
    expectUpdateSucceeds();
}

TEST_F(UpdateMishap, killed_while_any_tool_works_it_updates_the_next_time) {
    for (const char *tool : {"hdiutil", "codesign", "spctl"}) {
        letHang(tool);
        killWhileHanging();
        shell("rm hangs");
        mend(tool);
    }
    expectUpdateSucceeds();
}

TEST_F(UpdateMishap, killed_while_the_copy_is_made_it_updates_the_next_time) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test exchange a program.";
    shell(hangingScript);
    killWhileHanging("mount --bind \"$HOME/hanging\" /bin/cp");
    shell("rm hangs; mkdir -p cache/pavonel/tmp/Pavonel-staged-1.1.app; touch "
          "cache/pavonel/tmp/Pavonel-staged-1.1.app/half");
    expectUpdateSucceeds();
    EXPECT_FALSE(exists("Applications/Pavonel.app/half"));
}

TEST_F(UpdateMishap, when_nothing_can_be_handed_over_to_the_old_version_starts) {
    shell("mkdir -p cache/pavonel/tmp/pavonel-update.sh; cd \"$installed/libexec/pavonel\"; mv hdiutil real\n"
          "printf '#!/bin/bash\\n[[ $1 == attach ]] || until [[ -e $HOME/told || ! -d $HOME ]]; do sleep "
          "0.1; done\\n"
          "exec \"${0%%/*}/real\" \"$@\"\\n' >hdiutil; chmod +x hdiutil");
    write("config/pavonel/defaults.json", R"({"didOnboard": true, "autoUpdate": false})");
    before = fingerprint();
    const auto program = startUpdate();
    QByteArray said;
    ASSERT_TRUE(waitUntil([&] {
        said += program->process().readAllStandardOutput();
        return said.contains("verified and staged") || !program->isRunning();
    }));
    write("told", "");
    ASSERT_TRUE(waitUntil([&] {
        return exists("config/autostart/org.pavonel.Pavonel.desktop") || !program->isRunning();
    })) << "it does not start";
    ASSERT_TRUE(program->isRunning());
    program->process().terminate();
    ASSERT_TRUE(waitUntil([&] { return !program->isRunning(); }));
    EXPECT_EQ(program->process().exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program->process().exitCode(), 0) << program->process().readAllStandardError().toStdString();
    EXPECT_EQ(fingerprint(), before);
}

TEST_F(UpdateMishap, killed_after_the_handing_over_it_is_replaced_all_the_same) {
    const auto program = startUpdate();
    QByteArray said;
    ASSERT_TRUE(waitUntil([&] {
        said += program->process().readAllStandardOutput();
        return said.contains("verified and staged") && isScriptAtWork();
    }));
    program->process().kill();
    expectNewVersionRuns();
}

} // namespace pavonel::test
