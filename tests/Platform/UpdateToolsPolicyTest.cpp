#include "Platform/UpdateTools.h"

#include <ostream>

namespace pavonel::test {

namespace {

/// What stands in for spctl, on a bundle that is in order.
class UpdateToolsPolicy : public UpdateTools {
protected:
    UpdateToolsPolicy() {
        shell("cp /bin/true $app/pavonel; mkdir $app/resources; echo data >$app/resources/data; sign TEAM1");
    }

    QStringList arguments() const {
        return {QStringLiteral("--assess"), QStringLiteral("--type"), QStringLiteral("execute"), bundle()};
    }
    void expectRefused(const char *sentence) const {
        const auto result = run("spctl", arguments());
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors.trimmed().toStdString(), sentence);
    }
    void expectAccepted() const {
        const auto result = run("spctl", arguments());
        EXPECT_EQ(result.status, 0) << result.errors.toStdString();
        EXPECT_EQ(result.output + result.errors, "");
    }
};

struct Violation {
    const char *name;
    const char *commands;
    const char *sentence;
};
void PrintTo(const Violation &violation, std::ostream *out) {
    *out << violation.name;
}

constexpr char special[] = "It holds files with special permissions.";
constexpr char writable[] = "It holds files that others may change.";
constexpr char linksOut[] = "It holds links that lead out of it.";
constexpr char unlisted[] = "It holds files that are not in its list.";
constexpr char noProgram[] = "It holds no program.";

// Each signed anew where that can be signed at all: the team's own mistakes are refused too.
const Violation violations[] = {
    {"a_set_uid_file", "chmod u+s $app/pavonel", special},
    {"a_set_gid_file", "chmod g+s $app/resources/data", special},
    {"a_set_gid_folder", "chmod g+s $app/resources", special},
    {"a_file_for_anybody_to_change", "chmod o+w $app/resources/data", writable},
    {"a_file_for_its_group_to_change", "chmod g+w $app/resources/data", writable},
    {"a_folder_for_anybody_to_change", "chmod o+w $app/resources", writable},
    {"a_folder_for_its_group_to_change", "chmod g+w $app/resources", writable},
    {"the_whole_for_anybody_to_change", "chmod o+w $app", writable},
    {"a_pipe", "mkfifo $app/pipe", "It holds files that are neither data nor folders nor links."},
    {"a_link_to_above", "ln -s ../.. $app/up; sign TEAM1", linksOut},
    {"a_link_to_a_path", "ln -s /etc/passwd $app/passwd; sign TEAM1", linksOut},
    {"a_link_to_a_path_within", "ln -s \"$0/$app/pavonel\" $app/within; sign TEAM1", linksOut},
    {"a_link_to_nothing", "ln -s nothing $app/nothing; sign TEAM1", linksOut},
    {"a_link_to_itself", "ln -s itself $app/itself; sign TEAM1", linksOut},
    {"a_link_out_by_a_line_break", "touch image/out; ln -s ../out $app/$'a\\nb'; sign TEAM1", linksOut},
    {"a_link_to_a_sibling_of_like_name", "mkdir $app-2; ln -s ../Pavonel.app-2 $app/other; sign TEAM1",
     linksOut},
    {"an_unlisted_file", "touch $app/more", unlisted},
    {"an_unlisted_library", "cp /bin/true $app/resources/more", unlisted},
    {"no_list", "rm $app/manifest", unlisted},
    {"a_program_for_another_machine",
     "printf '\\xf3\\x00' | dd of=$app/pavonel bs=1 seek=18 conv=notrunc status=none; sign TEAM1",
     "It was made for another kind of computer."},
    {"a_library_for_another_machine",
     "cp /bin/true $app/resources/library; sign TEAM1\n"
     "printf '\\x01' | dd of=$app/resources/library bs=1 seek=4 conv=notrunc status=none; sign TEAM1",
     "It was made for another kind of computer."},
    {"no_program", "rm $app/pavonel; sign TEAM1", noProgram},
    {"a_program_that_is_not_executable", "chmod -x $app/pavonel; sign TEAM1", noProgram},
    {"a_program_that_is_a_script", "printf '#!/bin/sh\\n' >$app/pavonel; sign TEAM1", noProgram},
    {"a_missing_library", "sed -i 's/libc\\.so\\.6/libQ.so.6/g' $app/pavonel; sign TEAM1",
     "It needs system libraries that this computer does not have."},
    {"a_missing_library_of_one_that_it_carries",
     "mkdir $app/lib; sed 's/libc\\.so\\.6/libQ.so.6/g' $app/pavonel >$app/lib/libP.so; sign TEAM1",
     "It needs system libraries that this computer does not have."},
    {"a_library_that_it_carries_in_vain",
     "mkdir $app/lib; cp \"$(ldd $app/pavonel | awk '$1 == \"libc.so.6\" { print $3 }')\" $app/lib; sign "
     "TEAM1",
     "It does not use the libraries that it carries."},
    {"a_missing_library_of_what_fetches_updates",
     "mkdir -p $app/libexec/pavonel; sed 's/libc\\.so\\.6/libQ.so.6/g' $app/pavonel "
     ">$app/libexec/pavonel/fetch\n"
     "chmod +x $app/libexec/pavonel/fetch; sign TEAM1",
     "It needs system libraries that this computer does not have."},
};

class UpdateToolsViolation : public UpdateToolsPolicy, public testing::WithParamInterface<Violation> {};

} // namespace

TEST_F(UpdateToolsPolicy, a_bundle_in_order_is_accepted) {
    expectAccepted();
}

TEST_F(UpdateToolsPolicy, a_link_within_the_bundle_is_accepted) {
    shell("ln -s ../pavonel $app/resources/program; ln -s resources \"$app/a b\"; sign TEAM1");
    expectAccepted();
}

TEST_P(UpdateToolsViolation, is_refused) {
    shell(GetParam().commands);
    expectRefused(GetParam().sentence);
}

INSTANTIATE_TEST_SUITE_P(Of, UpdateToolsViolation, testing::ValuesIn(violations),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_F(UpdateToolsPolicy, a_link_to_a_bundle_is_refused) {
    shell("mv $app elsewhere; ln -s ../elsewhere $app");
    expectRefused("There is no application to assess.");
}

TEST_F(UpdateToolsPolicy, only_the_known_arguments_are_understood) {
    for (int left = 0; left < 4; ++left) {
        QStringList all = arguments();
        all.removeAt(left);
        EXPECT_EQ(run("spctl", all).status, 64) << "without argument " << left;
        all = arguments();
        all[left] = QStringLiteral("--disable");
        EXPECT_EQ(run("spctl", all).status, 64) << "another argument " << left;
    }
    EXPECT_EQ(run("spctl", arguments() << bundle()).status, 64);
}

} // namespace pavonel::test
