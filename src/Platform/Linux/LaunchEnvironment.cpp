#include "Platform/Linux/LaunchEnvironment.h"

#include "Platform/GivenEnvironment.h"

#include <algorithm>
#include <iterator>

namespace pavonel {

namespace {

constexpr char pathVariable[] = "PATH=";
constexpr char ownersPathVariable[] = "PAVONEL_PATH="; // which our tool "open" gives back

/// With these a desktop recognises the windows of the program that it started, and gives them the focus.
bool isForOurStartAlone(const QByteArray &variable) {
    return variable.startsWith("XDG_ACTIVATION_TOKEN=") || variable.startsWith("DESKTOP_STARTUP_ID=");
}

/// By these a shell is led to run something else than its script, or to read that in another way.
bool leadsShells(const QByteArray &variable) {
    constexpr const char *names[] = {"BASH_ENV=", "BASH_FUNC_", "BASHOPTS=",   "SHELLOPTS=",      "ENV=",
                                     "CDPATH=",   "IFS=",       "GLOBIGNORE=", "POSIXLY_CORRECT="};
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char *name) { return variable.startsWith(name); });
}

/// We may have been started with our tools in front; those whom we start need not know of them.
QByteArray without(const QByteArray &folder, const QByteArray &searchPath) {
    QByteArrayList folders = searchPath.split(':');
    folders.removeAll(folder);
    return folders.join(':');
}

} // namespace

QByteArrayList launchEnvironment(const QByteArray &toolsFolder, ProcessLauncher::SearchPath searchPath) {
    const bool isForOurScript = searchPath == ProcessLauncher::SearchPath::ownToolsFirst;
    QByteArrayList result;
    QByteArray path = "/usr/local/bin:/usr/bin:/bin";
    for (const QByteArray &variable : givenEnvironment()) {
        if (variable.startsWith(pathVariable))
            path = variable.sliced(sizeof pathVariable - 1);
        else if (!isForOurStartAlone(variable) && !(isForOurScript && leadsShells(variable)))
            result.append(variable);
    }
    path = without(toolsFolder, path);
    if (!isForOurScript)
        return result << pathVariable + path;
    return result << pathVariable + toolsFolder + ":/usr/bin:/bin:/usr/sbin:/sbin"
                  << ownersPathVariable + path;
}

} // namespace pavonel
