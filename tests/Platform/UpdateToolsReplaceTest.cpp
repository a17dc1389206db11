#include "Platform/UpdateTools.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <thread>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

/// From now on no file system exchanges anything for this process: renameat2 with a flag is an invalid call.
bool refuseExchanges() {
    constexpr unsigned flags = offsetof(seccomp_data, args) + 4 * sizeof(std::uint64_t);
    sock_filter code[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, flags),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{std::size(code), code};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// What the script that replaces a bundle finds as "cp" and "rm", and what remains of its environment.
class UpdateToolsReplace : public UpdateTools {
protected:
    UpdateToolsReplace() {
        shell("mkdir old; echo 1 >old/version; mkdir -p staged/resources; echo 2 >staged/version\n"
              "echo data >staged/resources/data; ln -s resources staged/link; chmod 755 staged/resources\n"
              "chmod 640 staged/resources/data; cp -R old place");
    }

    ChildProcess::Result copy() const {
        return run("cp",
                   {QStringLiteral("-R"), path(QStringLiteral("staged")), path(QStringLiteral("place"))});
    }
    void expectOnlyTheNewOne() const {
        shell("diff -r staged place; [[ ! -e .place.new && -L place/link ]]\n"
              "[[ $(stat -c %a place/resources/data) == 640 && $(stat -c %a place/resources) == 755 ]]");
    }
};

} // namespace

TEST_F(UpdateToolsReplace, a_copy_takes_the_place_of_the_bundle_whole_with_its_permissions) {
    const auto result = copy();
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    expectOnlyTheNewOne();
}

TEST_F(UpdateToolsReplace, a_copy_is_made_where_there_is_no_bundle) {
    shell("rm -r place");
    EXPECT_EQ(copy().status, 0);
    expectOnlyTheNewOne();
}

TEST_F(UpdateToolsReplace, what_a_power_cut_left_is_replaced) {
    shell("mkdir -p .place.new/new .place.new/old; echo half >.place.new/new/half");
    EXPECT_EQ(copy().status, 0);
    expectOnlyTheNewOne();
}

TEST_F(UpdateToolsReplace, at_every_moment_there_is_a_bundle) {
    std::atomic<bool> ended = false;
    std::atomic<int> missing = 0;
    const QByteArray version = QFile::encodeName(path(QStringLiteral("place/version")));
    std::thread watcher([&] {
        while (!ended)
            missing += ::access(version.constData(), R_OK) != 0;
    });
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(copy().status, 0);
    ended = true;
    watcher.join();
    EXPECT_EQ(missing, 0);
}

TEST_F(UpdateToolsReplace, a_file_system_that_cannot_exchange_folders_gets_the_copy_in_two_steps) {
    const QByteArray tool = QFile::encodeName(files().tool(QStringLiteral("cp")));
    const QByteArray staged = QFile::encodeName(path(QStringLiteral("staged")));
    const QByteArray place = QFile::encodeName(path(QStringLiteral("place")));
    inChild([&] {
        ASSERT_TRUE(refuseExchanges());
        const pid_t child = ::fork();
        if (child == 0) {
            ::execl(tool.constData(), "cp", "-R", staged.constData(), place.constData(), nullptr);
            ::_exit(127);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    });
    expectOnlyTheNewOne();
}

TEST_F(UpdateToolsReplace, what_cannot_be_copied_leaves_the_old_bundle) {
    shell("rm -r staged");
    EXPECT_EQ(copy().status, 1);
    shell("diff -r old place; [[ ! -e .place.new ]]");
}

TEST_F(UpdateToolsReplace, the_bundle_that_the_tools_lie_in_is_not_removed_by_them) {
    const QString rf = QStringLiteral("-rf");
    EXPECT_EQ(run("rm", {rf, path(QStringLiteral("program"))}).status, 0);
    EXPECT_TRUE(exists(QStringLiteral("program/libexec/pavonel/rm")));
    EXPECT_EQ(run("rm", {rf, path(QStringLiteral("staged"))}).status, 0);
    EXPECT_FALSE(exists(QStringLiteral("staged")));
    EXPECT_EQ(run("rm", {path(QStringLiteral("old"))}).status, 64);
    EXPECT_TRUE(exists(QStringLiteral("old")));
}

TEST_F(UpdateToolsReplace, the_program_that_is_opened_has_the_search_path_of_before) {
    addScript(QStringLiteral("image/Pavonel.app/pavonel"),
              "echo \"$PATH\" \"${PAVONEL_PATH-none}\" >new; mv new paths");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString usual = environment.value(QStringLiteral("PATH"));
    environment.insert(QStringLiteral("PAVONEL_PATH"), usual);
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/nonexistent"));
    EXPECT_EQ(ChildProcess::run(files().tool(QStringLiteral("open")), {bundle()}, environment).status, 0);
    EXPECT_TRUE(appears(QStringLiteral("paths")));
    EXPECT_EQ(read(QStringLiteral("paths")), usual.toUtf8() + " none\n");
}

} // namespace pavonel::test
