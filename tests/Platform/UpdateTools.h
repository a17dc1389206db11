#pragma once

#include "support/ChildProcess.h"
#include "support/InChild.h"
#include "support/ToolFixture.h"

namespace pavonel::test {

/// Our update tools as an installed copy has them, in the fixture's "program" folder, which trusts the key
/// of the team TEAM1. A stranger's key, that of TEAM2, lies beside that team's in "keys".
class UpdateTools : public ToolFixture {
protected:
    UpdateTools();

    /// Runs commands of bash in the fixture, whose path is $0; $app is the bundle, `sign TEAM` signs it.
    void shell(const QByteArray &commands) const;

    ChildProcess::Result run(const char *tool, const QStringList &arguments) const;

    /// The same on a machine that does not have the given system program. Needs `mayMount`.
    ChildProcess::Result runWithout(const char *program, const char *tool,
                                    const QStringList &arguments) const;

    QString bundle() const { return path(QStringLiteral("image/Pavonel.app")); }
};

} // namespace pavonel::test
