#include "EndToEnd/Desktop.h"
#include "EndToEnd/ProcessesIn.h"
#include "EndToEnd/Remote.h"
#include "support/MessageBus.h"
#include "support/files.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// A bundle that runs on a desktop while its user exchanges it for another version.
class GiveWay : public testing::Test {
protected:
    GiveWay() {
        const QString build = QFileInfo(QStringLiteral(PAVONEL_PROGRAM)).path();
        QDir().mkpath(bundle() + QStringLiteral("/libexec"));
        ChildProcess::run(QStringLiteral("cp"),
                          {QStringLiteral("-R"), build + QStringLiteral("/libexec/pavonel"),
                           bundle() + QStringLiteral("/libexec")},
                          QProcessEnvironment::systemEnvironment());
        EXPECT_TRUE(QFile::copy(QStringLiteral(PAVONEL_PROGRAM), program()));
        putInPlace("1");
        desktop.use(program());
        desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    }
    ~GiveWay() override { EXPECT_TRUE(endProcessesOf(desktop.environment().value(QStringLiteral("HOME")))); }

    QString bundle() const { return folder.filePath(QStringLiteral("Pavonel.app")); }
    QString program() const { return bundle() + QStringLiteral("/pavonel"); }
    void putInPlace(const char *version) const { writeFile(bundle() + QStringLiteral("/version"), version); }

    void openAgain() {
        ASSERT_TRUE(Remote(desktop.environment()).waitForIt());
        EXPECT_EQ(ChildProcess::run(program(), {}, desktop.environment()).status, 0);
    }

    /// Whether the program that was started first has gone, and another one shows its settings.
    bool theOtherVersionShowsItsSettings() {
        return desktop.waitForExit() == 0 && waitUntil([this] { return desktop.shows("Pavonel"); }) &&
               waitUntil([this] { return processesIn(bundle()).size() == 1; });
    }

    QTemporaryDir folder;
    MessageBus bus;
    Desktop desktop;
};

} // namespace

TEST_F(GiveWay, opened_again_with_another_version_in_its_place_the_settings_of_that_version_show) {
    desktop.store({{QStringLiteral("microInterval"), 600}});
    desktop.startProgram();
    ASSERT_TRUE(Remote(desktop.environment()).waitForIt());
    putInPlace("2");
    openAgain();
    EXPECT_TRUE(theOtherVersionShowsItsSettings());
}

TEST_F(GiveWay, a_break_that_runs_meanwhile_runs_to_its_end) {
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 8}});
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays());
    putInPlace("2");
    openAgain();
    EXPECT_TRUE(theOtherVersionShowsItsSettings());
    EXPECT_GE(desktop.statistics()[QStringLiteral("micro")].toInt(), 1);
    EXPECT_EQ(desktop.statistics()[QStringLiteral("skipped")].toInt(), 0);
}

} // namespace pavonel::test
