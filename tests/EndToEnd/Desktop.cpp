#include "EndToEnd/Desktop.h"

#include "support/files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>
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

Desktop::Desktop(XServer::WindowManager manager)
    : server_(std::make_unique<XServer>(QSize(1280 * screens, 720))) {
    server_->setMonitors({screen(0), screen(1), screen(2)});
    server_->start(manager);
    server_->run(QStringLiteral("xsetroot"), {QStringLiteral("-solid"), background().name()});
    pointAt(screen(1)); // the screens differ, and the idle time starts afresh
    tree_ = std::make_unique<WindowTree>(server_->display());
    environment_ = environmentAtHome();
    store({});
}

Desktop::~Desktop() = default;

QString Desktop::storePath() const {
    return home_.filePath(QStringLiteral(".config/pavonel/defaults.json"));
}

void Desktop::store(const QJsonObject &members) {
    QJsonObject all{{QStringLiteral("didOnboard"), true},
                    {QStringLiteral("launchAtLogin"), false},
                    {QStringLiteral("soundEnabled"), false},
                    {QStringLiteral("preNotifySeconds"), 0},
                    {QStringLiteral("longEnabled"), false}};
    for (auto member = members.begin(); member != members.end(); ++member)
        all[member.key()] = member.value();
    writeFile(storePath(), QJsonDocument(all).toJson());
}

QJsonObject Desktop::stored() const {
    return QJsonDocument::fromJson(readFile(storePath())).object();
}

QDate Desktop::today() {
    constexpr int hour = 3600; // seconds
    return QDateTime::currentDateTimeUtc().addSecs(-hour * hoursToUtc()).date();
}

QJsonObject Desktop::statistics() const {
    const auto data = stored()[QStringLiteral("stats.days")][QStringLiteral("data")].toString();
    const auto days = QJsonDocument::fromJson(QByteArray::fromBase64(data.toLatin1())).object();
    return days.isEmpty() ? QJsonObject() : (days.end() - 1)->toObject();
}

QProcessEnvironment Desktop::environmentAtHome() const {
    auto environment = server_->environment();
    const auto insert = [&](const char *name, const QString &folder) {
        QDir().mkpath(home_.filePath(folder));
        environment.insert(QString::fromLatin1(name), home_.filePath(folder));
    };
    environment.insert(QStringLiteral("PAVONEL_UPDATE_FEED"), QStringLiteral("http://127.0.0.1:1/nowhere"));
    environment.insert(QStringLiteral("TZ"), QStringLiteral("NIGHT%1").arg(hoursToUtc()));
    environment.insert(QStringLiteral("HOME"), home_.path());
    insert("XDG_CONFIG_HOME", QStringLiteral(".config"));
    insert("XDG_DATA_HOME", QStringLiteral(".local/share"));
    insert("XDG_CACHE_HOME", QStringLiteral(".cache"));
    insert("XDG_RUNTIME_DIR", QStringLiteral("runtime"));
    QFile::setPermissions(home_.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return environment;
}

void Desktop::startProgram() {
    sinceStart_.start();
    program_ = std::make_unique<ChildProcess>(QStringLiteral(PAVONEL_PROGRAM), QStringList(), environment_);
}

void Desktop::sendSignal(int signal) {
    if (program_->process().processId() > 0) // 0 would be everybody in the group of the test
        ::kill(static_cast<pid_t>(program_->process().processId()), signal);
}

int Desktop::endProgram(int signal) {
    sendSignal(signal);
    return waitForExit();
}

int Desktop::waitForExit() {
    QProcess &process = program_->process();
    const bool ended = waitUntil([&] { return process.state() == QProcess::NotRunning; });
    const bool well = ended && process.exitStatus() == QProcess::NormalExit;
    const int status = well ? process.exitCode() : -1;
    if (status != 0)
        std::fputs(process.readAllStandardError().constData(), stderr);
    return status;
}

std::vector<SeenWindow> Desktop::overlays() {
    auto windows = tree_->visible();
    std::erase_if(windows, [](const SeenWindow &window) { return window.title != u"Pavonel Break"; });
    return windows;
}

bool Desktop::shows(const char *title) {
    return std::ranges::any_of(
        tree_->visible(), [&](const SeenWindow &window) { return window.title == QString::fromUtf8(title); });
}

bool Desktop::waitForOverlays(std::size_t count) {
    return waitUntil([&] { return overlays().size() == count || !isRunning(); }) && isRunning();
}

void Desktop::pointAt(const QRect &screen) {
    const QPoint at = screen.center() + QPoint(7, 300); // beside everything one could press
    server_->xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
}

void Desktop::endServer() {
    tree_.reset();
    server_.reset();
}

} // namespace pavonel::test
