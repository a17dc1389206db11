#include "EndToEnd/ProgramAtHome.h"

#include "support/files.h"
#include "support/waitUntil.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// How many hours UTC is ahead of the zone in which it was two at night when the tests began.
int hoursToUtc() {
    constexpr int night = 2;
    constexpr int farthest = 12;
    static const int hours = QDateTime::currentDateTimeUtc().time().hour() - night;
    return hours > farthest ? hours - 24 : hours;
}

} // namespace

ProgramAtHome::ProgramAtHome(const QProcessEnvironment &desktop)
    : executable_(qEnvironmentVariable("PAVONEL_UNDER_TEST", QStringLiteral(PAVONEL_PROGRAM))),
      environment_(desktop) {
    settleAtHome();
    store({});
}

ProgramAtHome::~ProgramAtHome() = default;

QString ProgramAtHome::storePath() const {
    return home_.filePath(QStringLiteral(".config/pavonel/defaults.json"));
}

void ProgramAtHome::store(const QJsonObject &members) {
    QJsonObject all{{QStringLiteral("didOnboard"), true},
                    {QStringLiteral("launchAtLogin"), false},
                    {QStringLiteral("soundEnabled"), false},
                    {QStringLiteral("pauseOnScreenSharing"), false}, // other tests run recorders
                    {QStringLiteral("preNotifySeconds"), 0},
                    {QStringLiteral("longEnabled"), false}};
    for (auto member = members.begin(); member != members.end(); ++member)
        all[member.key()] = member.value();
    writeFile(storePath(), QJsonDocument(all).toJson());
}

QJsonObject ProgramAtHome::stored() const {
    return QJsonDocument::fromJson(readFile(storePath())).object();
}

QDate ProgramAtHome::today() {
    constexpr int hour = 3600; // seconds
    return QDateTime::currentDateTimeUtc().addSecs(-hour * hoursToUtc()).date();
}

QJsonObject ProgramAtHome::statistics() const {
    const auto data = stored()[QStringLiteral("stats.days")][QStringLiteral("data")].toString();
    const auto days = QJsonDocument::fromJson(QByteArray::fromBase64(data.toLatin1())).object();
    return days.isEmpty() ? QJsonObject() : (days.end() - 1)->toObject();
}

void ProgramAtHome::settleAtHome() {
    const auto insert = [&](const char *name, const QString &folder) {
        QDir().mkpath(home_.filePath(folder));
        environment_.insert(QString::fromLatin1(name), home_.filePath(folder));
    };
    environment_.insert(QStringLiteral("PAVONEL_UPDATE_FEED"), QStringLiteral("http://127.0.0.1:1/nowhere"));
    environment_.insert(QStringLiteral("TZ"), QStringLiteral("NIGHT%1").arg(hoursToUtc()));
    environment_.insert(QStringLiteral("HOME"), home_.path());
    insert("XDG_CONFIG_HOME", QStringLiteral(".config"));
    insert("XDG_DATA_HOME", QStringLiteral(".local/share"));
    insert("XDG_CACHE_HOME", QStringLiteral(".cache"));
    insert("XDG_RUNTIME_DIR", QStringLiteral("runtime"));
    QFile::setPermissions(home_.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void ProgramAtHome::startProgram(QStringList inFront) {
    inFront.append(executable_);
    const QString first = inFront.takeFirst();
    launch(first, inFront);
}

void ProgramAtHome::startProgramUnread() {
    const auto script = QStringLiteral("exec &> >(true); wait $!; exec env --default-signal=PIPE \"$0\"");
    launch(QStringLiteral("bash"), {QStringLiteral("-c"), script, executable_});
}

QJsonObject ProgramAtHome::status() const {
    const auto told =
        ChildProcess::run(executable_, {QStringLiteral("--status"), QStringLiteral("--json")}, environment_);
    return QJsonDocument::fromJson(told.output).object();
}

QStringList ProgramAtHome::threads(const QString &name) const {
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(program_->process().processId()));
    QStringList found = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    found.removeIf([&](const QString &task) {
        return QString::fromUtf8(readFile(tasks.filePath(task + QStringLiteral("/comm")))).trimmed() != name;
    });
    return found;
}

int ProgramAtHome::codeInMemory() const {
    const QByteArray status =
        readFile(QStringLiteral("/proc/%1/status").arg(program_->process().processId()));
    return status.sliced(status.indexOf("RssFile:") + 8).trimmed().split(' ').first().toInt();
}

void ProgramAtHome::launch(const QString &program, const QStringList &arguments) {
    sinceStart_.start();
    program_ = std::make_unique<ChildProcess>(program, arguments, environment_);
}

void ProgramAtHome::sendSignal(int signal) {
    if (program_->process().processId() > 0) // 0 would be everybody in the group of the test
        ::kill(static_cast<pid_t>(program_->process().processId()), signal);
}

int ProgramAtHome::endProgram(int signal) {
    sendSignal(signal);
    return waitForExit();
}

int ProgramAtHome::waitForExit() {
    QProcess &process = program_->process();
    const bool ended = waitUntil([&] { return process.state() == QProcess::NotRunning; });
    const bool well = ended && process.exitStatus() == QProcess::NormalExit;
    const int status = well ? process.exitCode() : -1;
    if (status != 0)
        std::fputs(process.readAllStandardError().constData(), stderr);
    return status;
}

} // namespace pavonel::test
