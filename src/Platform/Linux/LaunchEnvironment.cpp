#include "Platform/Linux/LaunchEnvironment.h"

#include <unistd.h>

namespace pavonel {

namespace {

constexpr char pathVariable[] = "PATH=";

/// With these a desktop recognises the windows of the program that it started, and gives them the focus.
bool isForOurStartAlone(const QByteArray &variable) {
    return variable.startsWith("XDG_ACTIVATION_TOKEN=") || variable.startsWith("DESKTOP_STARTUP_ID=");
}

/// We may have been started with our tools in front; those whom we start need not know of them.
QByteArray searchPathText(const QByteArray &inherited, const QByteArray &tools,
                          ProcessLauncher::SearchPath wanted) {
    QByteArrayList folders = inherited.split(':');
    folders.removeAll(tools);
    if (wanted == ProcessLauncher::SearchPath::ownToolsFirst)
        folders.prepend(tools);
    return folders.join(':');
}

} // namespace

QByteArrayList launchEnvironment(const QByteArray &toolsFolder, ProcessLauncher::SearchPath searchPath) {
    QByteArrayList result;
    QByteArray path = "/usr/local/bin:/usr/bin:/bin";
    for (char **variable = environ; variable && *variable; ++variable) {
        const QByteArray text(*variable);
        if (text.startsWith(pathVariable))
            path = text.sliced(sizeof pathVariable - 1);
        else if (!isForOurStartAlone(text))
            result.append(text);
    }
    result.append(pathVariable + searchPathText(path, toolsFolder, searchPath));
    return result;
}

} // namespace pavonel
