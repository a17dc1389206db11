#include "Platform/UpdateTools.h"

namespace pavonel::test {

UpdateTools::UpdateTools() {
    shell("mkdir -p program/libexec/pavonel $app\n"
          "cp '" PAVONEL_SOURCE_DIR "'/libexec/{hdiutil,codesign,spctl,open,rm,xattr,bundle-manifest} "
          "    program/libexec/pavonel\n"
          "cp \"$(dirname '" PAVONEL_PROGRAM "')\"/libexec/pavonel/{cp,confine} program/libexec/pavonel\n"
          "for team in TEAM1 TEAM2; do\n"
          "    '" PAVONEL_SOURCE_DIR "'/packaging/make-keys --without-passphrase $team keys\n"
          "done\n"
          "echo TEAM1 $(cat keys/TEAM1.key.pub) >program/libexec/pavonel/team-signers\n");
}

void UpdateTools::shell(const QByteArray &commands) const {
    const QByteArray prelude =
        "cd -- \"$0\"; app=image/Pavonel.app\n"
        "sign() { '" PAVONEL_SOURCE_DIR "'/packaging/sign-bundle keys/$1.key $app; }\n";
    const auto result = ChildProcess::run(
        QStringLiteral("bash"), {QStringLiteral("-euc"), QString::fromUtf8(prelude + commands), folder()});
    ASSERT_EQ(result.status, 0) << commands.toStdString() << "\n" << result.errors.toStdString();
}

ChildProcess::Result UpdateTools::run(const char *tool, const QStringList &arguments) const {
    return ChildProcess::run(files().tool(QString::fromUtf8(tool)), arguments);
}

ChildProcess::Result UpdateTools::runWithout(const char *program, const char *tool,
                                             const QStringList &arguments) const {
    const auto script = QStringLiteral("mount --bind /dev/null \"$(command -v %1)\" && exec \"$0\" \"$@\"");
    const QStringList inItsOwnView{QStringLiteral("-rm"), QStringLiteral("bash"), QStringLiteral("-c"),
                                   script.arg(QString::fromUtf8(program)),
                                   files().tool(QString::fromUtf8(tool))};
    return ChildProcess::run(QStringLiteral("unshare"), inItsOwnView + arguments);
}

} // namespace pavonel::test
