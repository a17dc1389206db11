#include "support/SoundServer.h"

#include "support/waitUntil.h"

#include <QDir>

#include <gtest/gtest.h>

namespace pavonel::test {

SoundServer::SoundServer(Kind kind) : kind_(kind) {
    QDir(home_.path()).mkpath(QStringLiteral("pulse"));
    const auto environment = this->environment();
    for (const auto *name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_SERVER"})
        qputenv(name, environment.value(QString::fromLatin1(name)).toLocal8Bit());
}

SoundServer::~SoundServer() = default;

QProcessEnvironment SoundServer::environment() const {
    auto environment = QProcessEnvironment::systemEnvironment();
    const QString home = home_.path();
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/config"));
    environment.insert(QStringLiteral("XDG_STATE_HOME"), home + QStringLiteral("/state"));
    environment.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:%1/pulse/native").arg(home));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus_.address());
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), bus_.address());
    environment.insert(QStringLiteral("DISABLE_RTKIT"), QStringLiteral("1"));
    environment.remove(QStringLiteral("DISPLAY"));
    return environment;
}

void SoundServer::start() {
    if (kind_ == Kind::pulseAudio)
        startPulseAudio();
    else
        startPipeWire();
    const bool there = waitUntil([this] {
        pactl({QStringLiteral("set-default-source"), QStringLiteral("mic")});
        pactl({QStringLiteral("set-default-sink"), QStringLiteral("spk")});
        const QByteArray info = pactl({QStringLiteral("info")});
        return info.contains("Default Source: mic\n") && info.contains("Default Sink: spk\n");
    });
    if (!there)
        ADD_FAILURE() << "The sound server does not offer its devices.";
}

void SoundServer::startPulseAudio() {
    const QString load = QStringLiteral("-L");
    launch(QStringLiteral("pulseaudio"),
           {QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--exit-idle-time=-1"),
            QStringLiteral("--use-pid-file=no"), load,
            QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=%1/pulse/native")
                .arg(home_.path()),
            load, QStringLiteral("module-null-sink sink_name=spk"), load,
            QStringLiteral("module-null-source source_name=mic"), load,
            QStringLiteral("module-suspend-on-idle timeout=2")});
}

void SoundServer::startPipeWire() {
    launch(QStringLiteral("pipewire"));
    waitUntil([this] { return QFile::exists(home_.filePath(QStringLiteral("pipewire-0"))); });
    launch(QStringLiteral("wireplumber"));
    launch(QStringLiteral("pipewire-pulse"));
    waitUntil([this] { return !pactl({QStringLiteral("info")}).isEmpty(); });
    addSource(QStringLiteral("mic"));
    pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"), QStringLiteral("sink_name=spk"),
           QStringLiteral("media.class=Audio/Sink")});
}

void SoundServer::addSource(const QString &name) {
    QStringList command{QStringLiteral("load-module")};
    if (kind_ == Kind::pulseAudio)
        command += {QStringLiteral("module-null-source"), QStringLiteral("source_name=") + name};
    else
        command += {QStringLiteral("module-null-sink"), QStringLiteral("sink_name=") + name,
                    QStringLiteral("media.class=Audio/Source/Virtual"), QStringLiteral("channel_map=mono")};
    pactl(command);
}

void SoundServer::launch(const QString &program, const QStringList &arguments) {
    programs_.push_back(std::make_unique<ChildProcess>(program, arguments, environment()));
}

void SoundServer::kill() {
    for (const auto &program : programs_)
        program->process().kill();
    programs_.clear();
    for (const char *socket :
         {"pulse/native", "pipewire-0", "pipewire-0-manager"}) // or they would look alive
        QFile::remove(home_.filePath(QString::fromLatin1(socket)));
}

QByteArray SoundServer::pactl(const QStringList &arguments) {
    const auto result = ChildProcess::run(QStringLiteral("pactl"), arguments, environment());
    return result.status == 0 ? result.output : QByteArray();
}

bool SoundServer::isRunning(const QString &list, const QString &device) {
    const auto lines = pactl({QStringLiteral("list"), QStringLiteral("short"), list}).split('\n');
    return std::any_of(lines.begin(), lines.end(), [&](const QByteArray &line) {
        return line.contains('\t' + device.toUtf8() + '\t') && line.endsWith("RUNNING");
    });
}

std::unique_ptr<ChildProcess> SoundServer::record(const QString &source) {
    return stream(QStringLiteral("parec"), source);
}

std::unique_ptr<ChildProcess> SoundServer::play(const QString &sink) {
    return stream(QStringLiteral("pacat"), sink);
}

std::unique_ptr<ChildProcess> SoundServer::playAs(const QString &applicationId) {
    return stream(QStringLiteral("pacat --property=application.id=") + applicationId, QStringLiteral("spk"));
}

std::unique_ptr<ChildProcess> SoundServer::stream(const QString &program, const QString &device) {
    // The shell ties the endless silence to the stream and leaves its place to it.
    const QString command =
        QStringLiteral("exec %1 --device=%2 < /dev/zero > /dev/null").arg(program, device);
    return std::make_unique<ChildProcess>(QStringLiteral("sh"), QStringList{QStringLiteral("-c"), command},
                                          environment());
}

} // namespace pavonel::test
