#include "Platform/Linux/Applications/Recorders.h"

#include <algorithm>
#include <array>
#include <string_view>

using namespace std::string_view_literals;

namespace pavonel::recorders {

namespace {

constexpr std::array remoteDesktops{"gnome-remote-desktop-daemon"sv,
                                    "krdpserver"sv,
                                    "krfb"sv,
                                    "vino-server"sv,
                                    "wayvnc"sv,
                                    "x0tigervncserver"sv,
                                    "x0vncserver"sv,
                                    "x11vnc"sv};
constexpr std::array screenRecorders{"blue-recorder"sv,
                                     "byzanz-record"sv,
                                     "deepin-screen-recorder"sv,
                                     "gpu-screen-recorder"sv,
                                     "green-recorder"sv,
                                     "gtk-recordmydesktop"sv,
                                     "kazam"sv,
                                     "kooha"sv,
                                     "peek"sv,
                                     "recordmydesktop"sv,
                                     "simplescreenrecorder"sv,
                                     "vokoscreen"sv,
                                     "vokoscreenNG"sv,
                                     "wf-recorder"sv,
                                     "wl-screenrec"sv};

template <std::size_t count>
bool contains(const std::array<std::string_view, count> &names, const QByteArray &name) {
    const std::string_view wanted(name.constData(), static_cast<std::size_t>(name.size()));
    return std::find(names.begin(), names.end(), wanted) != names.end();
}

/// Such a program does much else; only these sources are the screen.
bool takesScreen(const QByteArrayList &arguments) {
    return arguments.contains("x11grab") || arguments.contains("kmsgrab");
}

QString obsStudio() {
    return QStringLiteral("com.obsproject.obs-studio");
}

} // namespace

QString screenSharing() {
    return QStringLiteral("com.apple.ScreenSharing");
}

QString screenRecording() {
    return QStringLiteral("com.apple.screencaptureui");
}

QByteArrayList programs() {
    QByteArrayList names{"obs", "ffmpeg"};
    for (const std::string_view name : remoteDesktops)
        names.append(QByteArray(name.data(), static_cast<qsizetype>(name.size())));
    for (const std::string_view name : screenRecorders)
        names.append(QByteArray(name.data(), static_cast<qsizetype>(name.size())));
    return names;
}

bool isSuspect(const QByteArray &program) {
    return program == "ffmpeg" || program.startsWith("python") || !identifierOf(program, {}).isEmpty();
}

bool isOne(const QString &identifier) {
    return identifier == obsStudio() || identifier == screenSharing() || identifier == screenRecording();
}

QString identifierOf(const QByteArray &program, const QByteArrayList &arguments) {
    if (program == "obs")
        return obsStudio();
    if (contains(remoteDesktops, program))
        return screenSharing();
    if (contains(screenRecorders, program) || (program == "ffmpeg" && takesScreen(arguments)))
        return screenRecording();
    return {};
}

} // namespace pavonel::recorders
