#include "EndToEnd/HeadlessProgram.h"

#include "support/files.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Whether the process has a handler of its own for the signal.
bool catches(qint64 process, int signal) {
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QFile::ReadOnly))
        return false;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf("SigCgt:");
    return at >= 0 &&
           (text.sliced(at + 7).split('\n').value(0).trimmed().toULongLong(nullptr, 16) >> (signal - 1) &
            1) != 0;
}

} // namespace

HeadlessProgram::HeadlessProgram() : executable_(QStringLiteral(PAVONEL_PROGRAM)) {
    for (const char *name :
         {"PATH", "LANG", "QT_NO_XDG_DESKTOP_PORTAL", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        const QString key = QString::fromUtf8(name);
        if (qEnvironmentVariableIsSet(name))
            environment_.insert(key, qEnvironmentVariable(name));
    }
    environment_.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment_.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent"));
    environment_.insert(QStringLiteral("PAVONEL_UPDATE_FEED"), QStringLiteral("http://127.0.0.1:1/nowhere"));
    environment_.insert(QStringLiteral("HOME"), home_.path());
    for (const auto &[variable, folder] :
         {std::pair("XDG_CONFIG_HOME", "config"), std::pair("XDG_CACHE_HOME", "cache"),
          std::pair("XDG_DATA_HOME", "data"), std::pair("XDG_RUNTIME_DIR", "run")}) {
        const QString path = home_.filePath(QString::fromUtf8(folder));
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment_.insert(QString::fromUtf8(variable), path);
    }
    QDir().mkpath(storeFolder());
}

QJsonObject HeadlessProgram::stored() const {
    return QJsonDocument::fromJson(readFile(storePath())).object();
}

double HeadlessProgram::storedToday(const QString &number) const {
    const QString data = stored().value(u"stats.days").toObject().value(u"data").toString();
    const QJsonObject days = QJsonDocument::fromJson(QByteArray::fromBase64(data.toLatin1())).object();
    double sum = 0;
    for (const QJsonValue day : days) // two around midnight
        sum += day.toObject().value(number).toDouble();
    return sum;
}

ChildProcess::Result HeadlessProgram::run(const QStringList &arguments) const {
    return ChildProcess::run(executable_, arguments, environment_);
}

void HeadlessProgram::start(const QByteArray &commandsBefore) {
    if (commandsBefore.isEmpty())
        return startWith({});
    const QString script = QString::fromUtf8("set -e\n" + commandsBefore + "\nexec \"$0\"");
    program_ =
        std::make_unique<ChildProcess>(QStringLiteral("unshare"),
                                       QStringList{QStringLiteral("-rm"), QStringLiteral("sh"),
                                                   QStringLiteral("-c"), script, executable_, storeFolder()},
                                       environment_);
    waitUntilItCanEnd();
}

void HeadlessProgram::startWith(const QStringList &arguments) {
    program_ = std::make_unique<ChildProcess>(executable_, arguments, environment_);
    waitUntilItCanEnd();
}

void HeadlessProgram::waitUntilItCanEnd() {
    EXPECT_TRUE(
        waitUntil([this] { return !isRunning() || catches(program_->process().processId(), SIGTERM); }));
    EXPECT_TRUE(isRunning()) << program_->process().readAllStandardError().constData();
}

void HeadlessProgram::send(int signal) {
    const qint64 id = program_->process().processId();
    if (id > 0) // 0 would be everybody in the group of the test
        ::kill(static_cast<pid_t>(id), signal);
}

int HeadlessProgram::end(int signal) {
    QProcess &process = program_->process();
    send(signal);
    const bool ended =
        process.waitForFinished(generousTimeout) && process.exitStatus() == QProcess::NormalExit;
    EXPECT_TRUE(ended) << process.readAllStandardError().constData();
    return ended ? process.exitCode() : -1;
}

qint64 HeadlessProgram::residentMemory() const {
    const QByteArray status =
        readFile(QStringLiteral("/proc/%1/status").arg(program_->process().processId()));
    const qsizetype at = status.indexOf("VmRSS:");
    return at < 0 ? 0 : status.sliced(at + 6).trimmed().split(' ').value(0).toLongLong();
}

void HeadlessProgram::kill() {
    program_->process().kill();
    EXPECT_TRUE(program_->process().waitForFinished(generousTimeout));
}

} // namespace pavonel::test
