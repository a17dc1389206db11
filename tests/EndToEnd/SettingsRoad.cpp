#include "EndToEnd/SettingsRoad.h"

#include "support/files.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <csignal>
#include <set>

namespace pavonel::test {

namespace {

/// What the statistics and the updater keep beside the settings.
const std::set<QString> beside{QStringLiteral("stats.days"), QStringLiteral("lastUpdateCheck")};

/// The records as the user made them: in the list's order, weekdays sorted, without the identities.
QJsonArray plannedBreaks(const QJsonValue &stored) {
    const QByteArray data = QByteArray::fromBase64(stored[QStringLiteral("data")].toString().toLatin1());
    QJsonArray records;
    for (const QJsonValue value : QJsonDocument::fromJson(data).array()) {
        QJsonObject record = value.toObject();
        EXPECT_FALSE(record.take(QStringLiteral("id")).toString().isEmpty());
        std::set<int> weekdays;
        for (const QJsonValue day : record[QStringLiteral("weekdays")].toArray())
            weekdays.insert(day.toInt());
        QJsonArray sorted;
        for (const int day : weekdays)
            sorted.append(day);
        record[QStringLiteral("weekdays")] = sorted;
        records.append(record);
    }
    return records;
}

std::string printed(const QJsonValue &value) {
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

SettingsRoad::SettingsRoad() {
    desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus_.address());
    desktop.environment().insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    desktop.environment().insert(QStringLiteral("PYTHONDONTWRITEBYTECODE"), QStringLiteral("1"));
    desktop.environment().insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    accessibility_.emplace(desktop.environment());
}

void SettingsRoad::start(const QJsonObject &stored) {
    QFile::remove(desktop.storePath());
    if (!stored.isEmpty())
        writeFile(desktop.storePath(), QJsonDocument(stored).toJson());
    desktop.startProgram();
}

void SettingsRoad::walk(const QString &script, const QStringList &arguments) {
    const QString path = QStringLiteral(PAVONEL_SOURCE_DIR "/tests/EndToEnd/settings-road/") + script;
    ChildProcess python(QStringLiteral("/usr/bin/python3"), QStringList{path} + arguments,
                        desktop.environment());
    constexpr int long_ = 4 * generousTimeout; // every wait of the script has a limit of its own
    const bool ended = waitUntil([&] { return !python.isRunning(); }, long_);
    const std::string errors = python.process().readAllStandardError().toStdString();
    ASSERT_TRUE(ended) << script.toStdString() << " does not end\n" << errors;
    ASSERT_EQ(python.process().exitCode(), 0) << errors;
}

QJsonObject SettingsRoad::defaults() {
    QFile file(QStringLiteral(PAVONEL_SOURCE_DIR "/tests/EndToEnd/settings-road/defaults.json"));
    EXPECT_TRUE(file.open(QFile::ReadOnly));
    return QJsonDocument::fromJson(file.readAll()).object();
}

void SettingsRoad::expectStored(const QJsonObject &changes) {
    QJsonObject expected = defaults();
    for (auto member = changes.begin(); member != changes.end(); ++member)
        expected[member.key()] = member.value();
    expectOnlyStored(expected);
}

void SettingsRoad::expectOnlyStored(const QJsonObject &expected) {
    EXPECT_EQ(desktop.isRunning() ? desktop.endProgram(SIGTERM) : desktop.waitForExit(), 0);
    if (HasFatalFailure())
        return; // it did not come so far
    QJsonObject found = desktop.stored();
    for (const QString &key : beside)
        found.remove(key);
    const QString planned = QStringLiteral("plannedBreaks");
    if (found.contains(planned))
        found[planned] = plannedBreaks(found[planned]);
    for (const QString &key : expected.keys())
        EXPECT_EQ(printed(found[key]), printed(expected[key])) << "under " << key.toStdString();
    EXPECT_EQ(found.keys(), expected.keys());
}

} // namespace pavonel::test
